#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/StringEncoding.h"
#include "foundation/Unicode.h"

namespace fuzz {

/// Punycode by the loops of RFC 3492, section 6: what quicker code is held against. It looks at
/// each code point once for every different one.
class PlainPunycode {
 public:
  static std::optional<std::string> encode(const std::u32string& label) {
    std::string output;
    for (const char32_t c : label) {
      if (c < 128) output += static_cast<char>(c);
    }
    const std::size_t basicCount = output.size();
    if (basicCount > 0) output += '-';
    std::uint64_t delta = 0;
    PlainPunycode state;
    for (std::size_t h = basicCount; h < label.size(); ++delta, ++state.n) {
      char32_t next = 0x110000;
      for (const char32_t c : label) {
        if (c >= state.n && c < next) next = c;
      }
      delta += (next - state.n) * (h + 1);
      state.n = next;
      if (delta > UINT32_MAX) return std::nullopt;
      for (const char32_t c : label) {
        if (c < state.n && ++delta > UINT32_MAX) return std::nullopt;
        if (c != state.n) continue;
        std::uint64_t rest = delta;
        std::uint64_t k = 36;
        for (; rest >= state.t(k); k += 36) {
          const std::uint64_t t = state.t(k);
          output += digits[t + (rest - t) % (36 - t)];
          rest = (rest - t) / (36 - t);
        }
        output += digits[rest];
        state.adapt(delta, h + 1, h == basicCount);
        delta = 0;
        ++h;
      }
    }
    return output;
  }

  static std::optional<std::string> decode(const std::string& text) {
    std::size_t position = text.rfind('-');
    if (position == text.npos) position = 0;
    std::u32string output(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position));
    if (!foundation::isASCII(text.substr(0, position))) return std::nullopt;
    if (position > 0) ++position;
    PlainPunycode state;
    for (std::uint64_t i = 0; position < text.size(); ++i) {
      const std::uint64_t old = i;
      for (std::uint64_t w = 1, k = 36;; k += 36) {
        if (position == text.size()) return std::nullopt;
        const char c = text[position++];
        const auto digit = digits.find(c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c);
        if (digit == digits.npos) return std::nullopt;
        i += digit * w;
        if (i > UINT32_MAX) return std::nullopt;
        if (digit < state.t(k)) break;
        w *= 36 - state.t(k);
        if (w > UINT32_MAX) return std::nullopt;
      }
      state.adapt(i - old, output.size() + 1, old == 0);
      state.n += i / (output.size() + 1);
      if (state.n > UINT32_MAX) return std::nullopt;
      i %= output.size() + 1;
      output.insert(i, 1, static_cast<char32_t>(state.n));
    }
    return foundation::UTF8FromUTF32(output);
  }

 private:
  static constexpr std::string_view digits = "abcdefghijklmnopqrstuvwxyz0123456789";

  std::uint64_t t(std::uint64_t k) const { return k <= bias ? 1 : k >= bias + 26 ? 26 : k - bias; }

  void adapt(std::uint64_t delta, std::uint64_t count, bool isFirst) {
    delta = isFirst ? delta / 700 : delta / 2;
    delta += delta / count;
    std::uint64_t k = 0;
    for (; delta > 455; k += 36) delta /= 35;
    bias = k + 36 * delta / (delta + 38);
  }

  std::uint64_t n = 128;
  std::uint64_t bias = 72;
};

}  // namespace fuzz
