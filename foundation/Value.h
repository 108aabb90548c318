#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/Number.h"

namespace foundation {

/// Base of the classes whose instances are shared and can stand in a `Value`.
class Object {
 public:
  virtual ~Object() = default;

  /// A text for people and log lines; "<Class: 0x…>" unless a class says more.
  virtual std::string description() const;

  /// Whether both stand for the same thing; identity unless a class says more.
  virtual bool isEqual(const Object& other) const { return this == &other; }

  /// Equal objects have equal hashes.
  virtual std::size_t hash() const { return std::hash<const Object*>()(this); }

  friend bool operator==(const Object& a, const Object& b) { return a.isEqual(b); }
};

/// The null object: a value that says "nothing". No value at all is an empty
/// `std::optional<Value>`.
struct Null {
  friend bool operator==(Null, Null) = default;
};

class Value;
using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value, std::less<>>;

/// Any object: the null object, a number, a text, data, a date, an array, a dictionary, or a shared
/// object of a class of one's own.
class Value {
 public:
  Value(Null = {}) {}
  Value(std::nullptr_t) {}
  Value(Number value) : content_(value) {}
  template <class T>
  requires std::is_arithmetic_v<T> Value(T value) : content_(Number(value)) {}
  Value(const char* text) : content_(std::string(text)) {}
  Value(std::string_view text) : content_(std::string(text)) {}
  Value(std::string text) : content_(std::move(text)) {}
  Value(Data data) : content_(std::move(data)) {}
  Value(Date date) : content_(date) {}
  Value(Array array) : content_(std::move(array)) {}
  Value(Dictionary dictionary) : content_(std::move(dictionary)) {}
  /// A null pointer gives the null object.
  template <class T>
  requires std::is_convertible_v<T*, Object*> Value(std::shared_ptr<T> object)
      : content_(object ? Content(std::shared_ptr<Object>(std::move(object))) : Content()) {}

  bool isNull() const { return std::holds_alternative<Null>(content_); }

  /// The content when it is of class `T` (Number, std::string, Data, Date, Array, Dictionary or
  /// std::shared_ptr<Object>), else null.
  template <class T>
  const T* as() const {
    return std::get_if<T>(&content_);
  }

  /// A text for people: a text is itself, the null object "<null>", a number in decimal, a date
  /// "2024-03-09 14:05:07 +0000", data "<0a0b>", containers in brackets, sorted by key.
  std::string description() const;

  friend bool operator==(const Value& a, const Value& b);

 private:
  using Content = std::variant<Null, Number, std::string, Data, Date, Array, Dictionary,
                               std::shared_ptr<Object>>;

  Content content_;
};

/// The text under `key`; nothing when there is none or it is no text.
std::optional<std::string> stringForKey(const Dictionary& dictionary, std::string_view key);

}  // namespace foundation
