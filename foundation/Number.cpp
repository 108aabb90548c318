#include "foundation/Number.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include <unicode/uchar.h>

#include "foundation/StringEncoding.h"

namespace foundation {
namespace {

template <class Integer>
Integer clamped(double value) {
  using Limits = std::numeric_limits<Integer>;
  if (std::isnan(value)) return 0;
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  if (value >= static_cast<double>(Limits::max())) return Limits::max();
  return static_cast<Integer>(value);
}

std::string_view withoutLeadingWhiteSpace(std::string_view text) {
  while (!text.empty()) {
    const Character first = firstCharacter(text);
    if (!u_isUWhiteSpace(first.codePoint)) break;
    text.remove_prefix(first.length);
  }
  return text;
}

// Exact: an integer beyond 53 bits is not equal to the real that it would be rounded to. The
// largest integer, rounded, is one above the range.
template <class Integer>
bool isEqual(Integer integer, double real) {
  const bool inRange = real < static_cast<double>(std::numeric_limits<Integer>::max());
  return inRange && static_cast<double>(integer) == real && static_cast<Integer>(real) == integer;
}

template <class T>
constexpr bool isReal = std::is_same_v<std::remove_cvref_t<T>, double>;

}  // namespace

std::int64_t Number::convertedLongLongValue() const {
  return std::visit(
      [](auto value) -> std::int64_t {
        if constexpr (isReal<decltype(value)>) {
          return clamped<std::int64_t>(value);
        } else {
          constexpr auto limit = std::numeric_limits<std::int64_t>::max();
          return std::cmp_greater(value, limit) ? limit : static_cast<std::int64_t>(value);
        }
      },
      value_);
}

std::uint64_t Number::convertedUnsignedLongLongValue() const {
  return std::visit(
      [](auto value) -> std::uint64_t {
        if constexpr (isReal<decltype(value)>) {
          return clamped<std::uint64_t>(value);
        } else {
          return static_cast<std::uint64_t>(value);
        }
      },
      value_);
}

double Number::convertedDoubleValue() const {
  return std::visit([](auto value) { return static_cast<double>(value); }, value_);
}

bool Number::boolValue() const {
  return std::visit([](auto value) { return value != 0; }, value_);
}

std::string Number::stringValue() const {
  char text[32];
  const char* end = std::visit(
      [&](auto value) {
        if constexpr (isReal<decltype(value)>) {
          if (objCType_ == 'f') {
            return std::to_chars(text, text + sizeof text, static_cast<float>(value)).ptr;
          }
        }
        return std::to_chars(text, text + sizeof text, value).ptr;
      },
      value_);
  return std::string(static_cast<const char*>(text), end);
}

bool operator==(const Number& a, const Number& b) {
  return std::visit(
      [](auto x, auto y) {
        if constexpr (isReal<decltype(x)> && isReal<decltype(y)>) {
          return x == y;
        } else if constexpr (isReal<decltype(x)>) {
          return isEqual(y, x);
        } else if constexpr (isReal<decltype(y)>) {
          return isEqual(x, y);
        } else {
          return std::cmp_equal(x, y);
        }
      },
      a.value_, b.value_);
}

std::int64_t integerValue(std::string_view text) {
  using Limits = std::numeric_limits<std::int64_t>;
  text = withoutLeadingWhiteSpace(text);
  const bool negative = text.starts_with('-');
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  std::int64_t value = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end.ec == std::errc::result_out_of_range) return negative ? Limits::min() : Limits::max();
  return value;
}

}  // namespace foundation
