#include "foundation/Value.h"

#include <typeinfo>

#include "foundation/ClassName.h"
#include "foundation/DateFormatter.h"
#include "foundation/Format.h"

namespace foundation {
namespace {

struct Describe {
  std::string operator()(Null) const { return "<null>"; }
  std::string operator()(const Number& number) const { return number.stringValue(); }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(Date date) const {
    return DateFormatter("yyyy-MM-dd HH:mm:ss '+0000'", TimeZone::GMT).stringFromDate(date);
  }
  std::string operator()(const std::shared_ptr<Object>& object) const {
    return object->description();
  }
  std::string operator()(const Data& data) const {
    std::string text = "<";
    for (const std::uint8_t byte : data) text += format("%02x", byte);
    return text + ">";
  }
  std::string operator()(const Array& array) const {
    std::string text = "(";
    for (const Value& value : array) {
      text += text.size() == 1 ? "" : ", ";
      text += value.description();
    }
    return text + ")";
  }
  std::string operator()(const Dictionary& dictionary) const {
    std::string text = "{";
    for (const auto& [key, value] : dictionary) {
      text += format("%@ = %@; ", key, value.description());
    }
    if (text.ends_with(' ')) text.pop_back();
    return text + "}";
  }
};

}  // namespace

std::string Object::description() const {
  return format("<%@: %p>", className(typeid(*this)), static_cast<const void*>(this));
}

std::string Value::description() const { return std::visit(Describe(), content_); }

bool operator==(const Value& a, const Value& b) {
  const auto* object = a.as<std::shared_ptr<Object>>();
  const auto* other = b.as<std::shared_ptr<Object>>();
  if (object && other) return (*object)->isEqual(**other);
  return a.content_ == b.content_;
}

std::optional<std::string> stringForKey(const Dictionary& dictionary, std::string_view key) {
  const auto found = dictionary.find(key);
  if (found == dictionary.end()) return std::nullopt;
  const auto* text = found->second.as<std::string>();
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

}  // namespace foundation
