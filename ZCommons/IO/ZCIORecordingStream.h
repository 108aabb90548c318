#pragma once

#include "ZCommons/IO/ZCIODecoratingStream.h"
#include "foundation/Data.h"

/// A stream that keeps a copy of what passes through it, each direction by itself and only while
/// its switch is on. Both are off at first.
///
///     ZCIORecordingStream stream(connection);
///     stream.setReadRecordingEnabled(true);
///     stream.read(buffer, 100);
///     const foundation::Data seen = stream.resetReadRecordedBuffer();
class ZCIORecordingStream : public ZCIODecoratingStream {
 public:
  /// initWithStream:
  ///
  /// Works on `stream`. Raises NSInvalidArgumentException ("stream") when it is null.
  explicit ZCIORecordingStream(std::shared_ptr<ZCIOStream> stream);

  /// read:maxLength:
  ///
  /// Reads from the base stream; its result, of which the bytes are recorded.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override;

  /// write:maxLength:
  ///
  /// Writes to the base stream; its result. The bytes that it took are recorded.
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override;

  /// Return what was recorded since the last call, and start anew.
  foundation::Data resetReadRecordedBuffer();
  foundation::Data resetWriteRecordedBuffer();

  /// Whether the direction is recorded. Switching off keeps what was recorded.
  bool readRecordingEnabled() const { return readRecordingEnabled_; }
  void setReadRecordingEnabled(bool enabled) { readRecordingEnabled_ = enabled; }
  bool writeRecordingEnabled() const { return writeRecordingEnabled_; }
  void setWriteRecordingEnabled(bool enabled) { writeRecordingEnabled_ = enabled; }

  /// The base stream's.
  std::shared_ptr<ZCIOStreamDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<ZCIOStreamDelegate> delegate) override;
  std::uint64_t bytesRead() const override;
  std::uint64_t bytesWritten() const override;

 private:
  foundation::Data readRecorded_;
  foundation::Data writeRecorded_;
  bool writeRecordingEnabled_ = false;
  bool readRecordingEnabled_ = false;
};
