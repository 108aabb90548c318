#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/Format.h"
#include "foundation/NullableText.h"
#include "foundation/Value.h"

/// One argument of a statement: a view of a value whose type is checked when it is compiled.
///
/// Everything that can be bound converts: numbers, booleans, enumerations, texts (a literal is
/// always text), data (anything that converts to a `DataView`), dates, `foundation::Value` and its
/// containers, whatever has a `description()`, and optionals and smart pointers of those. Null
/// pointers, `std::nullopt` and empty optionals are nothing at all; the null object is an object.
///
/// Makes no copy and allocates nothing: what it was made from has to outlive it.
class FMArgument {
 public:
  /// An object of another class, and how to make a value of it: itself when it is shared, else the
  /// text of its description.
  struct OtherObject {
    const void* object;
    foundation::Value (*valueOf)(const void* object);
  };

  /// What the argument is, nothing at all first.
  using Content =
      std::variant<std::monostate, foundation::Null, foundation::Number, std::string_view,
                   foundation::DataView, foundation::Date, OtherObject>;

  FMArgument(foundation::Null null) : content_(null) {}
  template <std::same_as<foundation::Number> T>  // a pointer would convert to one, as a bool
  FMArgument(T number) : content_(number) {}
  template <class T>
  requires(std::is_arithmetic_v<T>&& std::constructible_from<foundation::Number, T>)
      FMArgument(T number)
      : content_(foundation::Number(number)) {}
  template <class T>
  requires std::is_enum_v<T> FMArgument(T value)
      : FMArgument(static_cast<std::underlying_type_t<T>>(value)) {}
  template <class T>
  requires std::convertible_to<const T&, foundation::NullableText> FMArgument(const T& text)
      : FMArgument(Text(), text) {}
  template <class T>
  requires std::convertible_to<const T&, foundation::DataView> FMArgument(const T& data)
      : content_(foundation::DataView(data)) {}
  template <class Duration>
  FMArgument(std::chrono::sys_time<Duration> date)
      : content_(std::chrono::floor<foundation::Date::duration>(date)) {}
  FMArgument(const foundation::Value& value);
  FMArgument(const foundation::Array& array) : content_(otherObject(array)) {}
  FMArgument(const foundation::Dictionary& dictionary) : content_(otherObject(dictionary)) {}
  template <foundation::Describable T>
  requires(!std::same_as<T, foundation::Number>) FMArgument(const T& object)
      : content_(otherObject(object)) {}
  template <class T>
  requires(!std::convertible_to<const std::optional<T>&, foundation::NullableText>)
      FMArgument(const std::optional<T>& value) {
    if (value) *this = FMArgument(*value);
  }
  template <class T>
  requires foundation::Describable<typename T::element_type> FMArgument(const T& pointer) {
    if (!pointer) return;
    if constexpr (std::constructible_from<foundation::Value, const T&>) {
      content_ = otherObject(pointer);
    } else {
      content_ = otherObject(*pointer);
    }
  }

  const Content& content() const { return content_; }

  /// A copy as an object of its own; nothing for nothing at all.
  std::optional<foundation::Value> value() const;

 private:
  struct Text {};

  FMArgument(Text, foundation::NullableText text) {
    if (!text.isNull()) content_ = text.view();
  }

  template <class T>
  static OtherObject otherObject(const T& object) {
    return {&object, [](const void* pointer) {
              const T& original = *static_cast<const T*>(pointer);
              if constexpr (std::constructible_from<foundation::Value, const T&>) {
                return foundation::Value(original);
              } else {
                return foundation::Value(std::string(original.description()));
              }
            }};
  }

  Content content_;
};

/// What can be an argument of a statement.
template <class T>
concept FMBindable = std::constructible_from<FMArgument, const T&>;

/// A list of arguments, read once from its beginning to its end.
///
///     const FMArgument values[] = {1, "text"};
///     FMArgumentList arguments(values);
///     database->executeUpdateWithVAList("insert into t values (?, ?)", arguments);
class FMArgumentList {
 public:
  /// A list of `arguments`, which have to outlive it.
  explicit FMArgumentList(std::span<const FMArgument> arguments) : rest_(arguments) {}

  /// The next `count` arguments; fewer at the end.
  std::span<const FMArgument> take(std::size_t count) {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  /// The next argument, or null at the end.
  const FMArgument* next() {
    const auto taken = take(1);
    return taken.empty() ? nullptr : taken.data();
  }

 private:
  std::span<const FMArgument> rest_;
};

/// The arguments of one call, and a list of them.
template <std::size_t count>
class FMArguments {
 public:
  template <FMBindable... Arguments>
  explicit FMArguments(const Arguments&... arguments) : values_{FMArgument(arguments)...} {}
  FMArguments(const FMArguments&) = delete;
  FMArguments& operator=(const FMArguments&) = delete;

  FMArgumentList& list() { return list_; }

 private:
  const std::array<FMArgument, count> values_;
  FMArgumentList list_{values_};
};
template <FMBindable... Arguments>
FMArguments(const Arguments&...) -> FMArguments<sizeof...(Arguments)>;
