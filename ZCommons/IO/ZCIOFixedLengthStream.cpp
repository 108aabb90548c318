#include "ZCommons/IO/ZCIOFixedLengthStream.h"

#include <algorithm>
#include <utility>

#include "logging/DDLogMacros.h"

ZCIOFixedLengthStream::ZCIOFixedLengthStream(std::shared_ptr<ZCIOStream> stream,
                                             std::int64_t contentLength)
    : ZCIODecoratingStream(std::move(stream)),
      contentLength_(static_cast<std::uint64_t>(contentLength)) {}

std::int64_t ZCIOFixedLengthStream::read(std::uint8_t* buffer, std::size_t maxLength) {
  if (bytesRead_ == contentLength_) return 0;
  const std::uint64_t toRead = std::min<std::uint64_t>(maxLength, contentLength_ - bytesRead_);
  const auto limit = static_cast<std::int64_t>(contentLength_);
  DDLogVerbose(__LINE__, "(%@[%p] %@) _inner.bytesRead=%lu, bytesRead=%lu, _contentLength=%li",
               THIS_FILE, this, "read:maxLength:", inner().bytesRead(), bytesRead_, limit);
  const std::int64_t count = inner().read(buffer, toRead);
  if (count > 0) bytesRead_ += static_cast<std::uint64_t>(count);
  DDLogVerbose(__LINE__,
               "(%@[%p] %@) After Read toRead=%lu, read=%li, _inner.bytesRead=%lu, bytesRead=%lu, "
               "_contentLength=%li",
               THIS_FILE, this, "read:maxLength:", toRead, count, inner().bytesRead(), bytesRead_,
               limit);
  return count;
}

std::int64_t ZCIOFixedLengthStream::write(const std::uint8_t* buffer, std::size_t maxLength) {
  const std::int64_t count = inner().write(buffer, maxLength);
  if (count > 0) bytesWritten_ += static_cast<std::uint64_t>(count);
  return count;
}
