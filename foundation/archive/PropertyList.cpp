#include "foundation/archive/PropertyList.h"

#include <charconv>
#include <utility>
#include <variant>

#include "foundation/archive/PlistNode.h"

namespace foundation {
namespace {

constexpr long readCorrupt = 3840;
constexpr long writeInvalid = 3852;

constexpr const char* typeKey = "$type";
constexpr const char* valueKey = "$value";

struct Failure {
  std::string reason;
};

void setItem(const PlistNode& dictionary, const char* key, PlistNode node) {
  plist_dict_set_item(dictionary.get(), key, node.release());
}

// Makes the nodes of a value; raises Failure.
class Builder {
 public:
  explicit Builder(PropertyListFormat format) : format_(format) {}

  PlistNode build(const Value& value) {
    if (const auto* number = value.as<Number>()) return plistNumber(*number);
    if (const auto* text = value.as<std::string>()) return buildText(*text);
    if (const auto* data = value.as<Data>()) return buildData(*data);
    if (const auto* date = value.as<Date>()) return buildDate(*date);
    if (const auto* array = value.as<Array>()) return buildArray(*array);
    if (const auto* dictionary = value.as<Dictionary>()) return buildDictionary(*dictionary);
    if (value.isNull()) return typed("null", nullptr);
    throw Failure{"a property list holds no object of a class: " + value.description()};
  }

 private:
  // One container on the way from the root.
  class Level {
   public:
    explicit Level(unsigned& depth) : depth_(depth) {
      if (++depth_ > maximumPlistDepth) throw Failure{"the containers are nested too deeply"};
    }
    ~Level() { --depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

   private:
    unsigned& depth_;
  };

  void weigh(std::size_t size) {
    size_ += size;
    if (size_ > maximumPlistSize) throw Failure{"the property list is too large"};
  }

  PlistNode typed(const char* type, PlistNode value) {
    const Level level(depth_);
    PlistNode node(plist_new_dict());
    setItem(node, typeKey, plistText(type));
    if (value) setItem(node, valueKey, std::move(value));
    return node;
  }

  PlistNode buildText(const std::string& text) {
    weigh(text.size());
    if (isPlistText(text, format_)) return plistText(text);
    return typed("text", plistData(dataOf(text)));
  }

  PlistNode buildData(const Data& data) {
    weigh(data.size());
    return plistData(data);
  }

  PlistNode buildDate(Date date) {
    if (PlistNode node = plistDate(date, format_)) return node;
    return typed("date", plistText(std::to_string(date.time_since_epoch().count())));
  }

  PlistNode buildArray(const Array& array) {
    const Level level(depth_);
    PlistNode node(plist_new_array());
    for (const Value& element : array) {
      weigh(sizeof(Value));
      plist_array_append_item(node.get(), build(element).release());
    }
    return node;
  }

  PlistNode buildDictionary(const Dictionary& dictionary) {
    const Level level(depth_);
    if (!keysFit(dictionary)) return typed("dictionary", buildArray(keysAndValues(dictionary)));
    PlistNode node(plist_new_dict());
    for (const auto& [key, value] : dictionary) {
      weigh(key.size() + sizeof(Value));
      setItem(node, key.c_str(), build(value));
    }
    return node;
  }

  bool keysFit(const Dictionary& dictionary) const {
    if (dictionary.contains(typeKey)) return false;
    for (const auto& entry : dictionary) {
      if (!isPlistText(entry.first, format_)) return false;
    }
    return true;
  }

  static Array keysAndValues(const Dictionary& dictionary) {
    Array array;
    for (const auto& [key, value] : dictionary) {
      array.emplace_back(key);
      array.push_back(value);
    }
    return array;
  }

  const PropertyListFormat format_;
  unsigned depth_ = 0;
  std::size_t size_ = 0;
};

Value valueOf(plist_t node);

std::optional<Value> dateOf(const Value& text) {
  const auto* digits = text.as<std::string>();
  if (!digits) return std::nullopt;
  std::int64_t count = 0;
  const char* last = digits->data() + digits->size();
  const auto [end, status] = std::from_chars(digits->data(), last, count);
  if (status != std::errc() || end != last) return std::nullopt;
  return Date(Date::duration(count));
}

std::optional<Value> dictionaryOf(const Value& keysAndValues) {
  const auto* array = keysAndValues.as<Array>();
  if (!array || array->size() % 2) return std::nullopt;
  Dictionary dictionary;
  for (std::size_t i = 0; i < array->size(); i += 2) {
    const auto* key = (*array)[i].as<std::string>();
    if (!key) return std::nullopt;
    dictionary.insert_or_assign(*key, (*array)[i + 1]);
  }
  return dictionary;
}

// What a dictionary of "$type" and "$value" stands for; nothing when it is an ordinary one.
std::optional<Value> typedValue(const Dictionary& dictionary) {
  const std::optional<std::string> type = stringForKey(dictionary, typeKey);
  if (!type) return std::nullopt;
  if (dictionary.size() == 1) return *type == "null" ? std::optional<Value>(Null()) : std::nullopt;
  const auto found = dictionary.find(valueKey);
  if (found == dictionary.end() || dictionary.size() != 2) return std::nullopt;
  if (*type == "date") return dateOf(found->second);
  if (*type == "dictionary") return dictionaryOf(found->second);
  const auto* bytes = found->second.as<Data>();
  if (*type == "text" && bytes) return Value(textOf(*bytes));
  return std::nullopt;
}

Value dictionaryValue(plist_t node) {
  Dictionary dictionary;
  forEachEntry(node, [&](std::string key, plist_t value) {
    dictionary.insert_or_assign(std::move(key), valueOf(value));
  });
  if (std::optional<Value> value = typedValue(dictionary)) return *std::move(value);
  return dictionary;
}

// As deep as the list, which is bounded.
Value valueOf(plist_t node) {
  if (PLIST_IS_DICT(node)) return dictionaryValue(node);
  if (PLIST_IS_UID(node)) return Dictionary{{"CF$UID", *uidOfPlist(node)}};
  if (PLIST_IS_ARRAY(node)) {
    Array array;
    forEachElement(node, [&](plist_t element) { array.push_back(valueOf(element)); });
    return array;
  }
  if (std::optional<Value> value = scalarOfPlist(node)) return *std::move(value);
  throw Failure{"the property list holds a date out of range"};
}

Error error(long code, std::string reason) {
  return Error("NSCocoaErrorDomain", code, std::move(reason));
}

}  // namespace

Result<Data> PropertyList::dataWithPropertyList(const Value& value, PropertyListFormat format) try {
  const PlistNode root = Builder(format).build(value);
  std::optional<Data> data = writePlist(root.get(), format);
  if (!data) return error(writeInvalid, "the property list cannot be written");
  return *std::move(data);
} catch (const Failure& failure) {
  return error(writeInvalid, failure.reason);
}

Result<Value> PropertyList::propertyListWithData(DataView data) try {
  const PlistNode root = readPlist(data);
  if (!root) return error(readCorrupt, "the data is no property list, or one beyond all bounds");
  return valueOf(root.get());
} catch (const Failure& failure) {
  return error(readCorrupt, failure.reason);
}

}  // namespace foundation
