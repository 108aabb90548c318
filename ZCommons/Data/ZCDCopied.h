#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/PropertyValue.h"
#include "foundation/Value.h"

/// A property of a shared object whose setter copies: what is assigned to it is copied (by
/// `copyWithZone` when the class has it, else by its copy constructor), so that later changes of
/// the original do not reach the record. Null stays null.
///
///     ZCDCopied<Address> address;   // address = home; address->street
template <class T>
class ZCDCopied {
 public:
  ZCDCopied() = default;
  ZCDCopied(std::nullptr_t) {}
  ZCDCopied(const std::shared_ptr<T>& original) : object_(copyOf(original)) {}

  /// The copy that is held, or null.
  const std::shared_ptr<T>& get() const { return object_; }
  T* operator->() const { return object_.get(); }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  static std::shared_ptr<T> copyOf(const std::shared_ptr<T>& original) {
    if (!original) return nullptr;
    if constexpr (requires { original->copyWithZone(); }) {
      return std::dynamic_pointer_cast<T>(original->copyWithZone());
    } else {
      return std::make_shared<T>(*original);
    }
  }

  std::shared_ptr<T> object_;
};

template <std::derived_from<foundation::Object> T>
struct foundation::PropertyValue<ZCDCopied<T>> {
  static std::string typeEncoding() { return PropertyValue<std::shared_ptr<T>>::typeEncoding(); }
  static constexpr std::string_view flag = "C";
  static std::optional<Value> box(const ZCDCopied<T>& property) {
    return PropertyValue<std::shared_ptr<T>>::box(property.get());
  }
  static bool unbox(const std::optional<Value>& value, ZCDCopied<T>& property) {
    std::shared_ptr<T> original;
    if (!PropertyValue<std::shared_ptr<T>>::unbox(value, original)) return false;
    property = original;
    return true;
  }
};
