#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace foundation {

/// A view of UTF-8 text that may be null, for arguments.
///
/// Null and empty differ. The text it was made from must outlive it. Everything that can stand
/// for a text converts: a literal, a string, a view, an optional of either, and null.
class NullableText {
 public:
  constexpr NullableText(std::nullptr_t = nullptr) {}
  constexpr NullableText(std::nullopt_t) {}
  constexpr NullableText(const char* text)
      : view_(text ? std::string_view(text) : std::string_view()), null_(text == nullptr) {}
  constexpr NullableText(std::string_view text) : view_(text), null_(false) {}
  NullableText(const std::string& text) : view_(text), null_(false) {}
  NullableText(const std::optional<std::string>& text)
      : view_(text ? std::string_view(*text) : std::string_view()), null_(!text) {}
  constexpr NullableText(std::optional<std::string_view> text)
      : view_(text.value_or(std::string_view())), null_(!text) {}

  constexpr bool isNull() const { return null_; }
  constexpr bool isNullOrEmpty() const { return view_.empty(); }

  /// The text; empty when it is null.
  constexpr std::string_view view() const { return view_; }

  /// A copy of the text; empty when it is null.
  std::string string() const { return std::string(view_); }

 private:
  std::string_view view_;
  bool null_ = true;
};

}  // namespace foundation
