#pragma once

#include <optional>

#include "ZCommons/IO/ZCIOStream.h"
#include "foundation/Error.h"
#include "platform/Channel.h"

/// Moves a stream's bytes through a descriptor: a file, a pipe or a socket, blocking or not.
///
/// A closed peer is the end of data for reading, and a failure, never a signal, for writing.
/// Interruptions by signals do not show, and do not prolong a time-out.
///
/// Thread safety: one thread may read while another writes; so two streams on one delegate can
/// serve both ways of a socket.
///
///     auto connection = std::make_shared<ZCIODescriptorDelegate>(platform::FileHandle(socket));
///     connection->setReadTimeout(30);
///     ZCIOStream stream(connection);
class ZCIODescriptorDelegate : public ZCIOStreamDelegate {
 public:
  /// Owns `handle`, and closes it when destroyed. No time-outs at first.
  explicit ZCIODescriptorDelegate(platform::FileHandle handle);

  /// read:maxLength:stream:
  ///
  /// Reads what there is, up to `maxLength` bytes, waiting for the first of them for the read
  /// time-out; 0 at the end of data, ZCIO_ERROR on failure and when the time is over.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream& stream) override;

  /// write:maxLength:stream:
  ///
  /// Writes all bytes within the write time-out, however small the pieces that the descriptor
  /// takes, and returns their number. On failure, and when the time is over, that of the bytes that
  /// were written, or ZCIO_ERROR when none were.
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength,
                     ZCIOStream& stream) override;

  /// The longest time in seconds that a read or a write may take. 0 does what can be done at once;
  /// a negative one (ZCIO_NO_TIMEOUT, say) waits as long as it takes.
  foundation::TimeInterval readTimeout() const override { return readTimeout_; }
  void setReadTimeout(foundation::TimeInterval timeout) override { readTimeout_ = timeout; }
  foundation::TimeInterval writeTimeout() const override { return writeTimeout_; }
  void setWriteTimeout(foundation::TimeInterval timeout) override { writeTimeout_ = timeout; }

  /// Why the last read or write that gave ZCIO_ERROR failed; the code is ETIMEDOUT when its time
  /// was over. Nothing when none has failed.
  const std::optional<foundation::Error>& readError() const { return readError_; }
  const std::optional<foundation::Error>& writeError() const { return writeError_; }

 private:
  const platform::Channel channel_;
  foundation::TimeInterval readTimeout_ = ZCIO_NO_TIMEOUT;
  foundation::TimeInterval writeTimeout_ = ZCIO_NO_TIMEOUT;
  std::optional<foundation::Error> readError_;
  std::optional<foundation::Error> writeError_;
};
