#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "ZCommons/IO/ZCIOStream.h"
#include "foundation/Data.h"

/// A line of a stream, taken byte by byte; one of up to 128 bytes costs no allocation. Not
/// installed.
class ZCIOLineBuffer {
 public:
  /// Raises NSMallocException ("buffer") when `step`, by which the buffer grows at least, is
  /// negative.
  explicit ZCIOLineBuffer(std::int64_t step);
  ZCIOLineBuffer(const ZCIOLineBuffer&) = delete;
  ZCIOLineBuffer& operator=(const ZCIOLineBuffer&) = delete;

  /// Replaces the line by the next one of `stream`: the bytes up to and including a line feed, or
  /// up to the end of data. Returns false when a read gave ZCIO_ERROR.
  /// Raises NSMallocException ("buffer") when there is no memory.
  bool readFrom(ZCIOStream& stream);

  foundation::DataView bytes() const { return room_.first(length_); }

  /// The line in ISO Latin-1, without the newlines at its ends; valid until the next change.
  std::string_view latin1Text();

 private:
  std::span<std::uint8_t> grow(std::size_t length);

  const std::size_t step_;
  std::array<std::uint8_t, 128> stack_;
  foundation::Data heap_;
  std::span<std::uint8_t> room_{stack_};
  std::size_t length_ = 0;
  std::string decoded_;
};
