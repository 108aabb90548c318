#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "ZCommons/IO/ZCIOStream.h"
#include "foundation/NSException.h"

namespace support {

/// Gives out a text in pieces, then one count for ever, and keeps what is written to it.
struct ScriptedDelegate : ZCIOStreamDelegate {
  explicit ScriptedDelegate(std::string_view all = "", std::int64_t last = 0)
      : text(all), end(last) {}

  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) override {
    requests.push_back(maxLength);
    if (text.empty()) return raiseOr(end);
    const auto count = text.copy(reinterpret_cast<char*>(buffer), std::min(maxLength, cut));
    text.remove_prefix(count);
    return static_cast<std::int64_t>(count);
  }
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) override {
    const std::size_t count = std::min(maxLength, room);
    written.append(reinterpret_cast<const char*>(buffer), count);
    return raiseOr(static_cast<std::int64_t>(count));
  }
  std::int64_t raiseOr(std::int64_t count) const {
    if (raises) foundation::raise<foundation::NSGenericException>("gone");
    return count;
  }

  std::string_view text;
  std::int64_t end;
  std::size_t cut = SIZE_MAX, room = SIZE_MAX;  ///< most bytes that a read gives, a write takes
  bool raises = false;                          ///< at the end of the text, and in writes
  std::string written;
  std::vector<std::size_t> requests;
};

/// What reads of `length` bytes give, up to the first that gives none: "Wik|ipe|0".
inline std::string readsOf(ZCIOStream& stream, std::size_t length) {
  std::string buffer(length, ' ');
  const auto count = stream.read(reinterpret_cast<std::uint8_t*>(buffer.data()), length);
  if (count < 1) return std::to_string(count);
  return buffer.substr(0, static_cast<std::size_t>(count)) + "|" + readsOf(stream, length);
}

inline std::int64_t writeText(ZCIOStream& stream, std::string_view text) {
  return stream.write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

}  // namespace support
