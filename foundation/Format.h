#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "foundation/NullableText.h"

namespace foundation {

/// Something with a `description()` of its own, which "%@" prints.
template <class T>
concept Describable = requires(const T& object) {
  { object.description() } -> std::convertible_to<std::string>;
};

/// One argument of `format`: a view of a value whose type is checked when it is made.
///
/// Numbers, booleans, texts, pointers, null and everything Describable convert, and optionals and
/// smart pointers of those (empty ones are null).
class FormatArgument {
 public:
  FormatArgument(std::nullptr_t) {}
  FormatArgument(std::nullopt_t) {}
  FormatArgument(bool value) : kind_(Kind::signedInteger), signed_(value) {}
  template <class T>
  requires(std::integral<T> && !std::same_as<T, bool> && std::is_signed_v<T>)
      FormatArgument(T value)
      : kind_(Kind::signedInteger), width_(sizeof(T)), signed_(value) {}
  template <class T>
  requires(std::integral<T> && !std::same_as<T, bool> && std::is_unsigned_v<T>)
      FormatArgument(T value)
      : kind_(Kind::unsignedInteger), width_(sizeof(T)), unsigned_(value) {}
  template <class T>
  requires std::is_enum_v<T> FormatArgument(T value)
      : FormatArgument(static_cast<std::underlying_type_t<T>>(value)) {}
  FormatArgument(double value) : kind_(Kind::real), real_(value) {}
  FormatArgument(const char* text) : FormatArgument(NullableText(text)) {}
  FormatArgument(std::string_view text) : kind_(Kind::text), text_(text) {}
  FormatArgument(const std::string& text) : kind_(Kind::text), text_(text) {}
  FormatArgument(NullableText text)
      : kind_(text.isNull() ? Kind::null : Kind::text), text_(text.view()) {}
  template <Describable T>
  FormatArgument(const T& object) : kind_(Kind::object), object_{&object, &describe<T>} {}
  template <class T>
  FormatArgument(const std::optional<T>& value)
      : FormatArgument(value ? FormatArgument(*value) : FormatArgument(nullptr)) {}
  template <class T>
  requires requires(const T& pointer) {
    typename T::element_type;
    { pointer.get() } -> std::same_as<typename T::element_type*>;
  }
  FormatArgument(const T& pointer) : FormatArgument(pointer.get()) {}
  template <class T>
  requires(!std::same_as<std::remove_cv_t<T>, char>) FormatArgument(T* pointer)
      : kind_(pointer ? Kind::pointer : Kind::null), pointer_(pointer) {
    if constexpr (Describable<T>) {
      if (pointer) *this = FormatArgument(*pointer);
    }
  }

  /// Appends the argument as the conversion of `conversion` (from its "%" up to and including
  /// its letter) prints it.
  void appendTo(std::string& output, std::string_view conversion) const;

 private:
  enum class Kind : std::uint8_t {
    null,
    signedInteger,
    unsignedInteger,
    real,
    text,
    pointer,
    object
  };
  struct ObjectView {
    const void* object;
    std::string (*describe)(const void*);
  };

  template <class T>
  static std::string describe(const void* object) {
    return static_cast<const T*>(object)->description();
  }

  std::uint64_t bits() const;
  void appendDescription(std::string& output) const;
  bool appendPlainInteger(std::string& output, char letter) const;
  void appendInteger(std::string& output, std::string_view conversion) const;
  void appendReal(std::string& output, std::string_view conversion) const;
  void appendText(std::string& output, std::string_view conversion) const;

  Kind kind_ = Kind::null;
  std::uint8_t width_ = sizeof(int);
  union {
    std::int64_t signed_;
    std::uint64_t unsigned_;
    double real_;
    std::string_view text_{};
    const void* pointer_;
    ObjectView object_;
  };
};

/// The text of `format` with its conversions filled from `arguments`, in order.
///
/// Conversions: "%@" and "%s" (the argument's text; an object's description), "%d %i %u %x %X %o"
/// with any length modifier (integers as wide as the argument is), "%f %e %g" and their capitals,
/// "%c", "%p", "%%"; flags, width and precision as printf has them, given in the format.
/// Null prints as "(null)", "%p" of null as "0x0". The result is defined for every combination: an
/// argument that does not fit its conversion prints as "%@" would print it, a missing one prints as
/// "(null)", one too many is ignored, and what is no conversion stands as it is.
std::string formatArguments(std::string_view format, std::span<const FormatArgument> arguments);

/// As `formatArguments`, with the arguments in the call.
template <class... Arguments>
std::string format(std::string_view format, const Arguments&... arguments) {
  if constexpr (sizeof...(arguments) == 0) {
    return formatArguments(format, {});
  } else {
    const FormatArgument list[] = {FormatArgument(arguments)...};
    return formatArguments(format, list);
  }
}

}  // namespace foundation
