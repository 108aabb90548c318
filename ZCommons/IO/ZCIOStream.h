#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "foundation/Date.h"
#include "foundation/NSException.h"

/// The count that says that a read or a write failed.
inline constexpr std::int64_t ZCIO_ERROR = -1;

/// The length that sets no limit.
inline constexpr std::int64_t ZCIO_UNLIMITED = -1;

/// The time-out that says that none is known.
inline constexpr foundation::TimeInterval ZCIO_NO_TIMEOUT = -1.0;

class ZCIOStream;

/// What a read-only stream raises when it is to write, or is asked about writing: named
/// "ZCIOStreamErrorException", with the reason "Writing method is not implemented.".
class ZCIOStreamErrorException : public foundation::NSException {
 public:
  explicit ZCIOStreamErrorException(const std::string& reason);
};

/// What moves a stream's bytes: a socket, a file, a buffer in memory.
///
/// Every operation is optional: one that is not overridden behaves as not offered.
/// Counts: above 0 the number of bytes moved, 0 for the end of data or nothing done, ZCIO_ERROR for
/// failure.
class ZCIOStreamDelegate {
 public:
  virtual ~ZCIOStreamDelegate() = default;

  /// read:maxLength:stream:
  ///
  /// Fills up to `maxLength` bytes into `buffer` for the calling `stream`; returns a count.
  virtual std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream& stream);

  /// write:maxLength:stream:
  ///
  /// Writes up to `maxLength` bytes of `buffer` for the calling `stream`; returns a count.
  virtual std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength, ZCIOStream& stream);

  /// Seconds; ZCIO_NO_TIMEOUT when not offered. A setter that is not offered does nothing.
  virtual foundation::TimeInterval readTimeout() const { return ZCIO_NO_TIMEOUT; }
  virtual void setReadTimeout(foundation::TimeInterval) {}
  virtual foundation::TimeInterval writeTimeout() const { return ZCIO_NO_TIMEOUT; }
  virtual void setWriteTimeout(foundation::TimeInterval) {}
};

/// A stream of bytes that counts what passes and leaves the input and output to its delegate, which
/// it holds weakly. Base of the streams that decorate another one.
///
/// Thread safety: one thread at a time, except that `counterWrittenBytes` and
/// `clearCounterWrittenBytes` may be called from any thread while the stream writes.
///
///     auto buffer = std::make_shared<MyBuffer>();
///     ZCIOStream stream(buffer);
///     stream.write(bytes, 10);   // bytesWritten() == 10
class ZCIOStream {
 public:
  /// A stream without a delegate: every read and write that is not empty fails.
  ZCIOStream() = default;

  /// initWithDelegate:
  explicit ZCIOStream(std::weak_ptr<ZCIOStreamDelegate> delegate);

  virtual ~ZCIOStream() = default;
  ZCIOStream(const ZCIOStream&) = delete;
  ZCIOStream& operator=(const ZCIOStream&) = delete;

  /// The delegate's time-outs in seconds, which the stream itself never enforces; ZCIO_NO_TIMEOUT
  /// without a delegate. Setting one without a delegate does nothing.
  virtual foundation::TimeInterval readTimeout() const;
  virtual void setReadTimeout(foundation::TimeInterval timeout);
  virtual foundation::TimeInterval writeTimeout() const;
  virtual void setWriteTimeout(foundation::TimeInterval timeout);

  /// read:maxLength:
  ///
  /// Reads up to `maxLength` bytes into `buffer` and returns the delegate's count. 0 for a length
  /// of 0, whatever else is missing; then ZCIO_ERROR for a null buffer and without a delegate.
  virtual std::int64_t read(std::uint8_t* buffer, std::size_t maxLength);

  /// write:maxLength:
  ///
  /// Writes up to `maxLength` bytes of `buffer`; results as those of `read`.
  virtual std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength);

  /// Sets `counterWrittenBytes` to 0; `bytesWritten` goes on.
  virtual void clearCounterWrittenBytes();

  /// The delegate, or null when there is none or it is gone.
  virtual std::shared_ptr<ZCIOStreamDelegate> delegate() const;
  virtual void setDelegate(std::weak_ptr<ZCIOStreamDelegate> delegate);

  /// Bytes written since the stream was made.
  virtual std::uint64_t bytesWritten() const;

  /// Bytes written since `clearCounterWrittenBytes`, or since the stream was made. Never waits.
  virtual std::uint64_t counterWrittenBytes() const;

  /// Bytes read since the stream was made.
  virtual std::uint64_t bytesRead() const;

 private:
  std::weak_ptr<ZCIOStreamDelegate> delegate_;
  std::uint64_t bytesWritten_ = 0;
  std::atomic<std::uint64_t> counterWrittenBytes_{0};
  std::uint64_t bytesRead_ = 0;
};
