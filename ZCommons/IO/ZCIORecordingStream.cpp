#include "ZCommons/IO/ZCIORecordingStream.h"

#include <utility>

using foundation::Data;

ZCIORecordingStream::ZCIORecordingStream(std::shared_ptr<ZCIOStream> stream)
    : ZCIODecoratingStream(std::move(stream)) {}

std::int64_t ZCIORecordingStream::read(std::uint8_t* buffer, std::size_t maxLength) {
  const std::int64_t count = inner().read(buffer, maxLength);
  if (count >= 1 && readRecordingEnabled_) {
    foundation::append(readRecorded_, {buffer, static_cast<std::size_t>(count)});
  }
  return count;
}

std::int64_t ZCIORecordingStream::write(const std::uint8_t* buffer, std::size_t maxLength) {
  const std::int64_t count = inner().write(buffer, maxLength);
  if (count >= 1 && writeRecordingEnabled_) {
    foundation::append(writeRecorded_, {buffer, static_cast<std::size_t>(count)});
  }
  return count;
}

Data ZCIORecordingStream::resetReadRecordedBuffer() { return std::exchange(readRecorded_, {}); }

Data ZCIORecordingStream::resetWriteRecordedBuffer() { return std::exchange(writeRecorded_, {}); }

std::shared_ptr<ZCIOStreamDelegate> ZCIORecordingStream::delegate() const {
  return inner().delegate();
}

void ZCIORecordingStream::setDelegate(std::weak_ptr<ZCIOStreamDelegate> delegate) {
  inner().setDelegate(std::move(delegate));
}

std::uint64_t ZCIORecordingStream::bytesRead() const { return inner().bytesRead(); }

std::uint64_t ZCIORecordingStream::bytesWritten() const { return inner().bytesWritten(); }
