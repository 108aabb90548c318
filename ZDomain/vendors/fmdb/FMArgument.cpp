#include "ZDomain/vendors/fmdb/FMArgument.h"

using foundation::Data;
using foundation::Date;
using foundation::Number;
using foundation::Value;

namespace {

struct Copy {
  std::optional<Value> operator()(std::monostate) const { return std::nullopt; }
  std::optional<Value> operator()(foundation::DataView data) const {
    return Value(Data(data.begin(), data.end()));
  }
  std::optional<Value> operator()(const FMArgument::OtherObject& other) const {
    return other.valueOf(other.object);
  }
  template <class T>
  std::optional<Value> operator()(const T& content) const {
    return Value(content);
  }
};

}  // namespace

FMArgument::FMArgument(const Value& value) {
  if (value.isNull()) {
    content_ = foundation::Null();
  } else if (const auto* number = value.as<Number>()) {
    content_ = *number;
  } else if (const auto* text = value.as<std::string>()) {
    content_ = std::string_view(*text);
  } else if (const auto* data = value.as<Data>()) {
    content_ = foundation::DataView(*data);
  } else if (const auto* date = value.as<Date>()) {
    content_ = *date;
  } else {
    content_ = otherObject(value);
  }
}

std::optional<Value> FMArgument::value() const { return std::visit(Copy(), content_); }
