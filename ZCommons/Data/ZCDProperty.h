#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "foundation/PropertyValue.h"
#include "foundation/Value.h"

class ZCDObject;

/// A declared property of a class of data objects: its name, what its C++ declaration says of it,
/// and how it is read and set.
///
/// The attributes are the text that the platform's runtime gives for such a property: "T" and the
/// type encoding, then flags, then "V" and the field, separated by commas. `std::string title` is
/// `T@"NSString",C,N,Vtitle`, `const bool seen` is `TB,R,N,Vseen`, `std::weak_ptr<Folder> folder`
/// is `T@"Folder",W,N,Vfolder`; a member function is read-only and has no field.
struct ZCDProperty {
  using Getter = std::optional<foundation::Value> (*)(const ZCDObject& object);
  using Setter = bool (*)(ZCDObject& object, const std::optional<foundation::Value>& value);

  std::string name;
  std::string attributes;
  Getter get;

  /// False, with the property untouched, when the value does not go into its type. Null when the
  /// property is read-only.
  Setter set;

  /// Whether a property with these attributes is archived and copied: none of its flags occurs in
  /// "W|R|P", and its type encoding occurs in "c|i|s|l|q|C|I|S|L|f|d" or begins with "@".
  static bool isPersistent(std::string_view attributes);

  /// The property of a member that is called `field`: a data member, or a const member function
  /// without arguments. One underscore at the end of `field` is no part of the property's name.
  template <auto Member>
  static ZCDProperty of(std::string_view field) {
    return Access<Member, decltype(Member)>::property(field);
  }

 private:
  template <auto Member, class Pointer>
  struct Access;

  static ZCDProperty make(std::string_view field, const std::string& type, std::string_view flags,
                          bool hasField, Getter get, Setter set);
};

template <auto Member, class Owner, class T>
requires(!std::is_function_v<T>) struct ZCDProperty::Access<Member, T Owner::*> {
  using Content = foundation::PropertyValue<std::remove_const_t<T>>;

  static ZCDProperty property(std::string_view field) {
    std::string flags(std::is_const_v<T> ? "R," : "");
    if (!Content::flag.empty()) flags.append(Content::flag).append(",");
    Setter setter = nullptr;
    if constexpr (!std::is_const_v<T>) setter = &set;
    return make(field, Content::typeEncoding(), flags, true, &get, setter);
  }

 private:
  static std::optional<foundation::Value> get(const ZCDObject& object) {
    return Content::box(static_cast<const Owner&>(object).*Member);
  }
  static bool set(ZCDObject& object, const std::optional<foundation::Value>& value) {
    return Content::unbox(value, static_cast<Owner&>(object).*Member);
  }
};

template <auto Member, class Owner, class T>
struct ZCDProperty::Access<Member, T (Owner::*)() const> {
  using Content = foundation::PropertyValue<std::remove_cvref_t<T>>;

  static ZCDProperty property(std::string_view field) {
    return make(field, Content::typeEncoding(), "R,", false, &get, nullptr);
  }

 private:
  static std::optional<foundation::Value> get(const ZCDObject& object) {
    return Content::box((static_cast<const Owner&>(object).*Member)());
  }
};
