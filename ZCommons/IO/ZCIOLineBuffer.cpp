#include "ZCommons/IO/ZCIOLineBuffer.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ZCommons/IO/ZCIOAllocation.h"
#include "foundation/StringEncoding.h"

using foundation::Data;
using foundation::DataView;

namespace {

// Every newline that ISO Latin-1 has is one byte.
bool isNewline(std::uint8_t byte) { return byte == '\n' || byte == '\r' || byte == 0x85; }

DataView trimmingNewlines(DataView data) {
  while (!data.empty() && isNewline(data.back())) data = data.first(data.size() - 1);
  while (!data.empty() && isNewline(data.front())) data = data.subspan(1);
  return data;
}

}  // namespace

ZCIOLineBuffer::ZCIOLineBuffer(std::int64_t step) : step_(ZCIOAllocation::checkedSize(step)) {}

bool ZCIOLineBuffer::readFrom(ZCIOStream& stream) {
  std::span<std::uint8_t> room = room_;
  std::size_t length = 0;
  std::int64_t count = 0;
  do {
    if (length == room.size()) room = grow(length);
    count = stream.read(&room[length], 1);
    if (count < 1) break;
  } while (room[length++] != '\n');
  length_ = length;
  return count != ZCIO_ERROR;
}

std::string_view ZCIOLineBuffer::latin1Text() {
  const DataView line = trimmingNewlines(bytes());
  const auto isASCII = [](std::uint8_t byte) { return byte < 0x80; };
  if (std::all_of(line.begin(), line.end(), isASCII)) return foundation::textOf(line);
  decoded_ = foundation::stringFromData(line, foundation::StringEncoding::ISOLatin1).value();
  return decoded_;
}

// Doubles at least, so that a line of any length costs time in proportion to it.
std::span<std::uint8_t> ZCIOLineBuffer::grow(std::size_t length) {
  Data larger;
  const std::size_t step = ZCIOAllocation::affordable(step_, length);
  ZCIOAllocation::checked([&] { larger.resize(length + std::max(step, length)); });
  std::memcpy(larger.data(), room_.data(), length);
  heap_ = std::move(larger);
  return room_ = heap_;
}
