#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace foundation {

/// A number that remembers the type it was made from, by the one-letter code of its type.
///
/// Codes: c (bool and char), C, s, S, i, I, q (long and long long), Q, f, d. Two numbers are equal
/// when their values are, whatever their types.
class Number {
 public:
  Number(bool value) : value_(std::int64_t{value}), objCType_('c') {}
  template <class T>
  requires(std::integral<T> && !std::same_as<T, bool> && std::is_signed_v<T>) Number(T value)
      : value_(static_cast<std::int64_t>(value)), objCType_(code<T>("csiq")) {}
  template <class T>
  requires(std::integral<T> && !std::same_as<T, bool> && std::is_unsigned_v<T>) Number(T value)
      : value_(static_cast<std::uint64_t>(value)), objCType_(code<T>("CSIQ")) {}
  Number(float value) : value_(static_cast<double>(value)), objCType_('f') {}
  Number(double value) : value_(value), objCType_('d') {}

  char objCType() const { return objCType_; }

  /// The value as a signed integer: cut towards zero, clamped to the range; 0 for not-a-number.
  std::int64_t longLongValue() const {
    const auto* const value = std::get_if<std::int64_t>(&value_);
    return value ? *value : convertedLongLongValue();
  }

  /// The value as an unsigned integer: cut towards zero, clamped to the range, except that a
  /// negative integer wraps around as C converts it.
  std::uint64_t unsignedLongLongValue() const {
    const auto* const value = std::get_if<std::int64_t>(&value_);
    return value ? static_cast<std::uint64_t>(*value) : convertedUnsignedLongLongValue();
  }

  double doubleValue() const {
    const auto* const value = std::get_if<double>(&value_);
    return value ? *value : convertedDoubleValue();
  }

  bool boolValue() const;

  /// The value in decimal; a real in the fewest digits that bring it back.
  std::string stringValue() const;
  std::string description() const { return stringValue(); }

  friend bool operator==(const Number& a, const Number& b);

 private:
  std::int64_t convertedLongLongValue() const;
  std::uint64_t convertedUnsignedLongLongValue() const;
  double convertedDoubleValue() const;

  // Picks the code by size: 1, 2, 4 or 8 bytes.
  template <class T>
  static constexpr char code(const char* codes) {
    return codes[sizeof(T) == 1 ? 0 : sizeof(T) == 2 ? 1 : sizeof(T) == 4 ? 2 : 3];
  }

  std::variant<std::int64_t, std::uint64_t, double> value_;
  char objCType_;
};

/// The integer that `text` begins with: white space (of Unicode) and one sign may stand in front of
/// the digits, anything behind them. 0 without digits; clamped to the range.
std::int64_t integerValue(std::string_view text);

}  // namespace foundation
