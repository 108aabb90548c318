#include "ZCommons/IO/ZCIOPeekingStream.h"

#include <algorithm>

#include "ZCommons/IO/ZCIOUtils.h"

using foundation::Data;
using foundation::DataView;

std::int64_t ZCIOPeekingStream::peek(std::uint8_t* buffer, std::size_t maxLength) {
  if (maxLength == 0) return 0;
  if (!buffer) return ZCIO_ERROR;
  const Data bytes = ZCIOUtils::read(inner(), static_cast<std::int64_t>(maxLength));
  storePeekingBytes(bytes);
  std::copy(bytes.begin(), bytes.end(), buffer);
  return static_cast<std::int64_t>(bytes.size());
}

void ZCIOPeekingStream::storePeekingBytes(DataView data) {
  peeked_.write(data.data(), data.size(), *this);
}

std::int64_t ZCIOPeekingStream::read(std::uint8_t* buffer, std::size_t maxLength) {
  if (maxLength == 0) return 0;
  if (!buffer) return ZCIO_ERROR;
  const std::int64_t count = peeked_.read(buffer, maxLength, *this);
  const std::size_t rest = maxLength - static_cast<std::size_t>(count);
  if (rest == 0) return count;
  const std::int64_t innerCount = inner().read(buffer + count, rest);
  if (innerCount < 1) return count > 0 ? count : innerCount;
  return count + innerCount;
}

std::int64_t ZCIOPeekingStream::write(const std::uint8_t* buffer, std::size_t maxLength) {
  return inner().write(buffer, maxLength);
}

std::uint64_t ZCIOPeekingStream::bytesRead() const {
  return inner().bytesRead() - peeked_.length();
}

std::uint64_t ZCIOPeekingStream::bytesWritten() const { return inner().bytesWritten(); }
