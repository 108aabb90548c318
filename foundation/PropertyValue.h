#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "foundation/ClassName.h"
#include "foundation/Value.h"

namespace foundation {

/// The real number that `text` begins with, whatever the locale: white space may stand in front of
/// it, anything behind it. 0 without one.
double doubleValue(std::string_view text);

/// Whether `text` says yes: after white space, a sign and zeros comes one of "YyTt" or a digit.
bool boolValue(std::string_view text);

/// How a property of type T becomes a value and a value becomes a property, and what the platform's
/// runtime would say of its type.
///
/// Every form has these members:
/// - `typeEncoding()`: the type's code, such as "i", "d", "@" or "@\"NSString\"";
/// - `flag`: what a setter does with an object, "C" (copies), "&" (holds), "W" (holds weakly), or
///   empty for scalars;
/// - `box(property)`: its value, nothing when it is null;
/// - `unbox(value, property)`: sets it; false, with the property untouched, when the value does not
///   go into a T.
///
/// A scalar takes numbers, converted as C converts them, and the numbers that texts begin with,
/// clamped to its range; never null. An enumeration is one too, and needs a fixed underlying type.
/// A text, data, date, array or dictionary takes its like, and null as its empty form (a date as
/// 1970). std::optional of these takes null as null; so do pointers to objects, which take objects
/// of their class. A Value takes everything. Structures and plain pointers take nothing and have no
/// value.
template <class T>
struct PropertyValue {
  static std::string typeEncoding() { return std::is_pointer_v<T> ? "^v" : "{?}"; }
  static constexpr std::string_view flag = "";
  static std::optional<Value> box(const T&) { return std::nullopt; }
  static bool unbox(const std::optional<Value>&, T&) { return false; }
};

template <class T>
concept ScalarProperty =
    std::integral<T> || std::is_enum_v<T> || std::same_as<T, float> || std::same_as<T, double>;

template <ScalarProperty T>
struct PropertyValue<T> {
  using Scalar = typename std::conditional_t<std::is_enum_v<T>, std::underlying_type<T>,
                                             std::type_identity<T>>::type;
  static_assert(
      !std::is_enum_v<T> || requires { T{Scalar{}}; },
      "an enumeration takes any number only when its underlying type is fixed");

  static std::string typeEncoding() {
    if constexpr (std::same_as<Scalar, bool>) return "B";
    return std::string(1, Number(Scalar{}).objCType());
  }
  static constexpr std::string_view flag = "";
  static std::optional<Value> box(T property) { return Number(static_cast<Scalar>(property)); }

  static bool unbox(const std::optional<Value>& value, T& property) {
    if (!value) return false;
    if (const auto* number = value->as<Number>()) {
      property = static_cast<T>(scalar(*number));
      return true;
    }
    const auto* text = value->as<std::string>();
    if (text) property = static_cast<T>(scalar(*text));
    return text != nullptr;
  }

 private:
  static Scalar scalar(const Number& number) {
    if constexpr (std::same_as<Scalar, bool>)
      return number.boolValue();
    else if constexpr (std::floating_point<Scalar>)
      return static_cast<Scalar>(number.doubleValue());
    else if constexpr (std::is_unsigned_v<Scalar>)
      return static_cast<Scalar>(number.unsignedLongLongValue());
    else
      return static_cast<Scalar>(number.longLongValue());
  }
  static Scalar scalar(const std::string& text) {
    using Limits = std::numeric_limits<Scalar>;
    if constexpr (std::same_as<Scalar, bool>)
      return boolValue(text);
    else if constexpr (std::floating_point<Scalar>)
      return static_cast<Scalar>(doubleValue(text));
    else if constexpr (sizeof(Scalar) < sizeof(std::int64_t))
      return static_cast<Scalar>(
          std::clamp<std::int64_t>(integerValue(text), Limits::min(), Limits::max()));
    else if constexpr (std::is_signed_v<Scalar>)
      return integerValue(text);
    else
      return static_cast<Scalar>(std::max<std::int64_t>(integerValue(text), 0));
  }
};

/// What the content types of a Value have in common.
template <class T>
struct ContentProperty {
  static constexpr std::string_view flag = "C";
  static std::optional<Value> box(const T& property) { return Value(property); }

  static bool unbox(const std::optional<Value>& value, T& property) {
    if (!value || value->isNull()) {
      if constexpr (std::default_initializable<T>) property = T();
      return std::default_initializable<T>;
    }
    const T* content = value->template as<T>();
    if (content) property = *content;
    return content != nullptr;
  }
};

template <>
struct PropertyValue<std::string> : ContentProperty<std::string> {
  static std::string typeEncoding() { return "@\"NSString\""; }
};
template <>
struct PropertyValue<Data> : ContentProperty<Data> {
  static std::string typeEncoding() { return "@\"NSData\""; }
};
template <>
struct PropertyValue<Date> : ContentProperty<Date> {
  static std::string typeEncoding() { return "@\"NSDate\""; }
};
template <>
struct PropertyValue<Number> : ContentProperty<Number> {
  static std::string typeEncoding() { return "@\"NSNumber\""; }
};
template <>
struct PropertyValue<Array> : ContentProperty<Array> {
  static std::string typeEncoding() { return "@\"NSArray\""; }
};
template <>
struct PropertyValue<Dictionary> : ContentProperty<Dictionary> {
  static std::string typeEncoding() { return "@\"NSDictionary\""; }
};

template <>
struct PropertyValue<Value> {
  static std::string typeEncoding() { return "@"; }
  static constexpr std::string_view flag = "&";
  static std::optional<Value> box(const Value& property) { return property; }
  static bool unbox(const std::optional<Value>& value, Value& property) {
    property = value.value_or(Value());
    return true;
  }
};

template <class T>
struct PropertyValue<std::optional<T>> {
  static std::string typeEncoding() {
    return ScalarProperty<T> ? "@\"NSNumber\"" : PropertyValue<T>::typeEncoding();
  }
  static constexpr std::string_view flag =
      ScalarProperty<T> ? std::string_view("C") : PropertyValue<T>::flag;
  static std::optional<Value> box(const std::optional<T>& property) {
    return property ? PropertyValue<T>::box(*property) : std::nullopt;
  }
  static bool unbox(const std::optional<Value>& value, std::optional<T>& property) {
    if (!value || value->isNull()) {
      property.reset();
      return true;
    }
    if constexpr (std::same_as<T, Number>) {
      const auto* number = value->as<Number>();
      if (number) property = *number;
      return number != nullptr;
    } else {
      T content{};
      if (!PropertyValue<T>::unbox(value, content)) return false;
      property = std::move(content);
      return true;
    }
  }
};

template <std::derived_from<Object> T>
struct PropertyValue<std::shared_ptr<T>> {
  static std::string typeEncoding() { return "@\"" + className(typeid(T)) + "\""; }
  static constexpr std::string_view flag = "&";
  static std::optional<Value> box(const std::shared_ptr<T>& property) {
    return property ? std::optional<Value>(property) : std::nullopt;
  }
  static bool unbox(const std::optional<Value>& value, std::shared_ptr<T>& property) {
    if (!value || value->isNull()) {
      property.reset();
      return true;
    }
    const auto* object = value->template as<std::shared_ptr<Object>>();
    auto content = object ? std::dynamic_pointer_cast<T>(*object) : nullptr;
    if (!content) return false;
    property = std::move(content);
    return true;
  }
};

template <std::derived_from<Object> T>
struct PropertyValue<std::weak_ptr<T>> {
  static std::string typeEncoding() { return PropertyValue<std::shared_ptr<T>>::typeEncoding(); }
  static constexpr std::string_view flag = "W";
  static std::optional<Value> box(const std::weak_ptr<T>& property) {
    return PropertyValue<std::shared_ptr<T>>::box(property.lock());
  }
  static bool unbox(const std::optional<Value>& value, std::weak_ptr<T>& property) {
    std::shared_ptr<T> object;
    if (!PropertyValue<std::shared_ptr<T>>::unbox(value, object)) return false;
    property = object;
    return true;
  }
};

}  // namespace foundation
