#include "ZCommons/IO/NSDataUtils.h"

#include <algorithm>

#include "ZCommons/IO/ZCIODigest.h"
#include "foundation/NSException.h"

using foundation::DataView;

std::uint8_t NSDataUtils::byteAtIndex(DataView data, std::size_t index) {
  if (index >= data.size()) {
    foundation::raise<foundation::NSRangeException>("Index out of range");
  }
  return data[index];
}

std::size_t NSDataUtils::indexOfByte(DataView data, std::uint8_t byte) {
  return indexOfByte(data, byte, 0);
}

// The "not found" of a text is that of bytes.
std::size_t NSDataUtils::indexOfByte(DataView data, std::uint8_t byte, std::size_t firstIndex) {
  return foundation::textOf(data).find(static_cast<char>(byte), firstIndex);
}

std::optional<std::string> NSDataUtils::toString(DataView data,
                                                 foundation::StringEncoding encoding) {
  constexpr std::size_t longest = 255;
  const DataView head = data.first(std::min(data.size(), longest));
  const std::size_t end = indexOfByte(head, 0);
  return foundation::stringFromData(head.first(std::min(head.size(), end)), encoding);
}

std::array<std::uint8_t, 16> NSDataUtils::md5Digest(DataView data) {
  std::array<std::uint8_t, 16> digest;
  ZCIODigest::compute(ZCIODigest::Algorithm::MD5, data, digest);
  return digest;
}

std::array<std::uint8_t, 32> NSDataUtils::sha256Digest(DataView data) {
  std::array<std::uint8_t, 32> digest;
  ZCIODigest::compute(ZCIODigest::Algorithm::SHA256, data, digest);
  return digest;
}
