#include "foundation/PercentEscape.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "foundation/StringEncoding.h"

namespace foundation {
namespace {

using Legal = std::array<bool, 256>;

constexpr void mark(Legal& legal, std::string_view characters, bool value) {
  for (const char c : characters) legal[static_cast<unsigned char>(c)] = value;
}

constexpr Legal legalInURLs = [] {
  Legal legal{};
  mark(legal, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", true);
  mark(legal, "-_.!~*'();/?:@&=+$,", true);
  return legal;
}();

}  // namespace

std::string stringByAddingPercentEscapes(std::string_view text, std::string_view unescaped,
                                         std::string_view escaped) {
  Legal legal = legalInURLs;
  mark(legal, unescaped, true);
  mark(legal, escaped, false);
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (legal[byte]) {
      result += c;
      continue;
    }
    constexpr char digits[] = "0123456789ABCDEF";
    result += '%';
    result += digits[byte >> 4];
    result += digits[byte & 0xF];
  }
  return result;
}

std::optional<std::string> bytesByReplacingPercentEscapes(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t percent = text.find('%');
    result += text.substr(0, percent);
    if (percent == text.npos) break;
    const std::string_view digits = text.substr(percent + 1, 2);
    unsigned byte = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (error != std::errc() || digits.size() != 2 || end != digits.data() + 2) return std::nullopt;
    result += static_cast<char>(byte);
    text.remove_prefix(percent + 3);
  }
  return result;
}

std::optional<std::string> stringByReplacingPercentEscapes(std::string_view text) {
  std::optional<std::string> result = bytesByReplacingPercentEscapes(text);
  if (result && !isValidUTF8(*result)) result.reset();
  return result;
}

}  // namespace foundation
