#include "foundation/archive/ArchiveReader.h"

#include <cmath>
#include <utility>
#include <vector>

#include "foundation/Format.h"
#include "foundation/archive/Archivable.h"
#include "foundation/archive/PlistNode.h"

namespace foundation {
namespace {

constexpr long coderReadCorrupt = 4864;
constexpr double objectCost = 256;  // about what one takes in memory

template <class... Arguments>
[[noreturn]] void raiseDamaged(const Arguments&... arguments) {
  raise<NSInvalidUnarchiveOperationException>(format(arguments...));
}

plist_t item(plist_t dictionary, const char* key) {
  return PLIST_IS_DICT(dictionary) ? plist_dict_get_item(dictionary, key) : nullptr;
}

// What stands under the key of an object's class; null when nothing does.
plist_t storedItem(plist_t fields, std::string_view key) {
  if (key.find('\0') != key.npos) return nullptr;
  return item(fields, archiveKey(key).c_str());
}

}  // namespace

NSInvalidUnarchiveOperationException::NSInvalidUnarchiveOperationException(
    const std::string& reason)
    : NSException("NSInvalidUnarchiveOperationException", reason) {}

// The list of objects, and what was made of it.
class ArchiveReader::Archive {
 public:
  explicit Archive(DataView data) : list_(readPlist(data)), budget_(maximumExpansion(data.size())) {
    const plist_t objects = item(list_.get(), "$objects");
    const auto archiver = textOfPlist(item(list_.get(), "$archiver"));
    if (archiver != "NSKeyedArchiver" || !PLIST_IS_ARRAY(objects)) {
      raiseDamaged("the data is no keyed archive");
    }
    forEachElement(objects, [this](plist_t node) { objects_.push_back({node}); });
  }

  std::optional<Value> root() { return decode(item(item(list_.get(), "$top"), "root")); }

  // The object that a reference stands for; nothing for the reference to none.
  std::optional<Value> decode(plist_t reference) {
    const auto uid = uidOfPlist(reference);
    if (!uid) raiseDamaged("a reference to an object is missing");
    if (*uid == 0) return std::nullopt;
    if (*uid >= objects_.size()) raiseDamaged("no object has the number %@", Number(*uid));
    Entry& entry = objects_[*uid];
    if (entry.object) return entry.object;
    if (entry.isOpen) raiseDamaged("the object with the number %@ is inside itself", Number(*uid));
    spend(objectCost);
    if (std::optional<Value> scalar = scalarOfPlist(entry.node)) {
      spendContent(*scalar);
      return scalar;
    }
    const Opening opening(*this, entry);
    return instance(entry);
  }

 private:
  struct Entry {
    plist_t node;
    bool isOpen = false;
    std::shared_ptr<Archivable> object = nullptr;
  };

  // An object on the way from the root.
  class Opening {
   public:
    Opening(Archive& archive, Entry& entry) : archive_(archive), entry_(entry) {
      if (archive.depth_ == maximumPlistDepth) raiseDamaged("the objects are nested too deeply");
      ++archive.depth_;
      entry.isOpen = true;
    }
    ~Opening() {
      --archive_.depth_;
      entry_.isOpen = false;
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

   private:
    Archive& archive_;
    Entry& entry_;
  };

  void spend(double bytes) {
    budget_ -= bytes;
    if (budget_ < 0) raiseDamaged("the archive grows beyond all bounds");
  }

  void spendContent(const Value& value) {
    if (const auto* text = value.as<std::string>()) spend(static_cast<double>(text->size()));
    if (const auto* data = value.as<Data>()) spend(static_cast<double>(data->size()));
  }

  Value instance(Entry& entry) {
    const std::string name(className(entry.node));
    if (name == "NSNull") return Null();
    if (name == "NSArray" || name == "NSMutableArray") return array(item(entry.node, "NS.objects"));
    if (name == "NSDictionary" || name == "NSMutableDictionary") return dictionary(entry.node);
    if (name == "NSDate") return date(entry.node);
    if (name == "NSString" || name == "NSMutableString") return text(entry.node);
    if (name == "NSData" || name == "NSMutableData") return scalarItem<Data>(entry.node, "NS.data");
    const ArchivableClass* archivableClass = ArchivableClass::named(name);
    if (!archivableClass) {
      raiseDamaged("cannot decode object of class (%@): no class of that name is registered", name);
    }
    std::shared_ptr<Archivable> object = archivableClass->make();
    ArchiveReader reader(*this, entry.node);
    if (!object->initWithCoder(reader)) {
      raiseDamaged("the archive does not hold what class (%@) needs", name);
    }
    return entry.object = std::move(object);
  }

  std::string_view className(plist_t instance) const {
    const auto uid = uidOfPlist(item(instance, "$class"));
    if (uid && *uid < objects_.size()) {
      if (const auto name = textOfPlist(item(objects_[*uid].node, "$classname"))) return *name;
    }
    raiseDamaged("an object has no class");
  }

  Value array(plist_t references) {
    if (!PLIST_IS_ARRAY(references)) raiseDamaged("an array has no elements");
    Array array;
    array.reserve(plist_array_get_size(references));
    forEachElement(references, [&](plist_t reference) {
      array.push_back(decode(reference).value_or(Value()));
    });
    return array;
  }

  Value dictionary(plist_t fields) {
    const Value keys = array(item(fields, "NS.keys"));
    Value values = array(item(fields, "NS.objects"));
    if (keys.as<Array>()->size() != values.as<Array>()->size()) {
      raiseDamaged("a dictionary has not as many keys as values");
    }
    Dictionary dictionary;
    auto value = values.as<Array>()->begin();
    for (const Value& key : *keys.as<Array>()) {
      const auto* text = key.as<std::string>();
      if (!text) raiseDamaged("a dictionary has a key that is no text");
      dictionary.insert_or_assign(*text, *value++);
    }
    return dictionary;
  }

  Value date(plist_t fields) {
    const plist_t exact = item(fields, "NS.microseconds");
    if (exact) {
      const Number count = scalarItem<Number>(fields, "NS.microseconds");
      return Date(Date::duration(count.longLongValue()));
    }
    const Number seconds = scalarItem<Number>(fields, "NS.time");
    const std::optional<Date> date = dateAtReference(seconds.doubleValue());
    if (!date) raiseDamaged("a date is out of range");
    return *date;
  }

  Value text(plist_t fields) {
    if (item(fields, "NS.string")) return scalarItem<std::string>(fields, "NS.string");
    return textOf(scalarItem<Data>(fields, "NS.bytes"));
  }

  template <class T>
  T scalarItem(plist_t fields, const char* key) {
    const plist_t node = item(fields, key);
    const std::optional<Value> value = node ? scalarOfPlist(node) : std::nullopt;
    const T* content = value ? value->as<T>() : nullptr;
    if (!content) raiseDamaged("nothing fit stands under \"%@\"", key);
    spendContent(*value);
    return *content;
  }

  PlistNode list_;
  std::vector<Entry> objects_;
  unsigned depth_ = 0;
  double budget_;
};

Result<Value> ArchiveReader::unarchive(DataView archive) try {
  Archive reader(archive);
  return reader.root().value_or(Value());
} catch (const NSException& exception) {
  return Error("NSCocoaErrorDomain", coderReadCorrupt, exception.reason());
}

Error ArchiveReader::wrongClass() {
  return Error("NSCocoaErrorDomain", coderReadCorrupt, "the root object is of another class");
}

bool ArchiveReader::containsValueForKey(std::string_view key) const {
  return storedItem(fields_, key) != nullptr;
}

std::optional<Value> ArchiveReader::decodeObjectForKey(std::string_view key) {
  const plist_t reference = storedItem(fields_, key);
  if (!reference) return std::nullopt;
  if (!uidOfPlist(reference)) raiseDamaged("value for key (%@) is not an object", key);
  return archive_.decode(reference);
}

std::int64_t ArchiveReader::decodeIntegerForKey(std::string_view key) const {
  const plist_t node = storedItem(fields_, key);
  if (!node) return 0;
  const std::optional<Value> value = scalarOfPlist(node);
  const auto* number = value ? value->as<Number>() : nullptr;
  if (!number) raiseDamaged("value for key (%@) is not an integer", key);
  const double limit = 0x1p63;
  const double real = number->doubleValue();
  const bool fits = number->objCType() == 'Q' ? number->longLongValue() >= 0 && real < limit
                                              : real >= -limit && real < limit;
  if (number->objCType() == 'q' || fits) return number->longLongValue();
  raise<NSRangeException>(format("value for key (%@) is too large for an integer", key));
}

}  // namespace foundation
