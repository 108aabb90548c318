#include "foundation/archive/ArchiveWriter.h"

#include <string>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/ClassName.h"
#include "foundation/StringEncoding.h"
#include "foundation/archive/Archivable.h"
#include "foundation/archive/PlistNode.h"

namespace foundation {
namespace {

constexpr long coderInvalidValue = 4866;

using UID = std::uint64_t;

void setItem(plist_t dictionary, const char* key, PlistNode node) {
  plist_dict_set_item(dictionary, key, node.release());
}

PlistNode plistUID(UID uid) { return PlistNode(plist_new_uid(uid)); }

std::string checkedKey(std::string_view key) {
  if (key.find('\0') != key.npos || !isValidUTF8(key)) raise<NSInvalidArgumentException>("key");
  return archiveKey(key);
}

}  // namespace

NSInvalidArchiveOperationException::NSInvalidArchiveOperationException(const std::string& reason)
    : NSException("NSInvalidArchiveOperationException", reason) {}

// The list of objects as it grows, and where each shared object and class stands in it.
struct ArchiveWriter::Archive {
  explicit Archive(PropertyListFormat listFormat) : format(listFormat), objects(plist_new_array()) {
    append(plistText("$null"));
  }

  std::optional<Data> written(UID root) {
    PlistNode list(plist_new_dict());
    PlistNode top(plist_new_dict());
    setItem(top.get(), "root", plistUID(root));
    setItem(list.get(), "$version", plistNumber(Number(100'000)));
    setItem(list.get(), "$archiver", plistText("NSKeyedArchiver"));
    setItem(list.get(), "$top", std::move(top));
    setItem(list.get(), "$objects", std::move(objects));
    return writePlist(list.get(), format);
  }

  UID uid(const Value& value) {
    if (const auto* text = value.as<std::string>()) return textUID(*text);
    if (const auto* number = value.as<Number>()) return append(plistNumber(*number));
    if (const auto* data = value.as<Data>()) return dataUID(*data);
    if (const auto* date = value.as<Date>()) return dateUID(*date);
    if (const auto* object = value.as<std::shared_ptr<Object>>()) return objectUID(*object);
    const Level level(depth);
    if (const auto* array = value.as<Array>()) return arrayUID(*array);
    if (const auto* dictionary = value.as<Dictionary>()) return dictionaryUID(*dictionary);
    return nullUID();
  }

 private:
  struct Entry {
    UID uid = 0;
    bool isOpen = true;  // on the way from the root to the value being written
  };

  class Level {
   public:
    explicit Level(unsigned& depth) : depth_(depth) {
      if (++depth_ > maximumPlistDepth) {
        raise<NSInvalidArchiveOperationException>("the objects are nested too deeply");
      }
    }
    ~Level() { --depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

   private:
    unsigned& depth_;
  };

  struct Slot {
    UID uid;
    plist_t fields;
  };

  UID append(PlistNode node) {
    plist_array_append_item(objects.get(), node.release());
    return count++;
  }

  Slot begin() {
    PlistNode node(plist_new_dict());
    const plist_t fields = node.get();
    return {append(std::move(node)), fields};
  }

  UID finished(Slot slot, const char* className) {
    setItem(slot.fields, "$class", plistUID(classUID(className, nullptr)));
    return slot.uid;
  }

  void weigh(std::size_t bytes) {
    size += bytes;
    if (size > maximumPlistSize) {
      raise<NSInvalidArchiveOperationException>("the archive is too large");
    }
  }

  UID nullUID() {
    if (null == 0) null = finished(begin(), "NSNull");
    return null;
  }

  UID textUID(const std::string& text) {
    weigh(text.size());
    if (isPlistText(text, format)) return append(plistText(text));
    const Slot slot = begin();
    setItem(slot.fields, "NS.bytes", plistData(dataOf(text)));
    return finished(slot, "NSString");
  }

  UID dataUID(const Data& data) {
    weigh(data.size());
    return append(plistData(data));
  }

  UID dateUID(Date date) {
    const Slot slot = begin();
    const double seconds = secondsSinceReference(date);
    setItem(slot.fields, "NS.time", plistNumber(Number(seconds)));
    if (dateAtReference(seconds) != date) {
      const Number exact(date.time_since_epoch().count());
      setItem(slot.fields, "NS.microseconds", plistNumber(exact));
    }
    return finished(slot, "NSDate");
  }

  UID arrayUID(const Array& array) {
    const Slot slot = begin();
    PlistNode elements(plist_new_array());
    for (const Value& element : array) add(elements, element);
    setItem(slot.fields, "NS.objects", std::move(elements));
    return finished(slot, "NSArray");
  }

  UID dictionaryUID(const Dictionary& dictionary) {
    const Slot slot = begin();
    PlistNode keys(plist_new_array());
    PlistNode values(plist_new_array());
    for (const auto& [key, value] : dictionary) {
      add(keys, key);
      add(values, value);
    }
    setItem(slot.fields, "NS.keys", std::move(keys));
    setItem(slot.fields, "NS.objects", std::move(values));
    return finished(slot, "NSDictionary");
  }

  void add(const PlistNode& array, const Value& value) {
    weigh(sizeof(Value));
    plist_array_append_item(array.get(), plistUID(uid(value)).release());
  }

  UID objectUID(const std::shared_ptr<Object>& object) {
    if (const auto known = shared.find(object); known != shared.end()) {
      if (!known->second.isOpen) return known->second.uid;
      raise<NSInvalidArchiveOperationException>("an object is inside itself: " +
                                                object->description());
    }
    const Object& content = *object;
    const std::type_info& type = typeid(content);
    const ArchivableClass* archivableClass = ArchivableClass::ofType(type);
    if (!archivableClass) {
      raise<NSInvalidArchiveOperationException>("class (" + className(type) +
                                                ") is not registered for archives");
    }
    const Level level(depth);
    const Slot slot = begin();
    Entry& entry = shared[object];
    entry.uid = slot.uid;
    ArchiveWriter writer(*this, slot.fields);
    static_cast<const Archivable&>(content).encodeWithCoder(writer);
    setItem(slot.fields, "$class", plistUID(classUID(archivableClass->name(), archivableClass)));
    entry.isOpen = false;
    return slot.uid;
  }

  // `archivableClass` is null for the platform's own.
  UID classUID(const std::string& name, const ArchivableClass* archivableClass) {
    const auto [known, isNew] = classes.try_emplace(name, 0);
    if (!isNew) return known->second;
    PlistNode names(plist_new_array());
    plist_array_append_item(names.get(), plistText(name).release());
    while (archivableClass && (archivableClass = archivableClass->superclass())) {
      plist_array_append_item(names.get(), plistText(archivableClass->name()).release());
    }
    plist_array_append_item(names.get(), plistText("NSObject").release());
    const Slot slot = begin();
    setItem(slot.fields, "$classname", plistText(name));
    setItem(slot.fields, "$classes", std::move(names));
    return known->second = slot.uid;
  }

  const PropertyListFormat format;
  PlistNode objects;
  UID count = 0;
  UID null = 0;  // of the null object, once it is written
  std::unordered_map<std::shared_ptr<Object>, Entry> shared;
  std::unordered_map<std::string, UID> classes;
  unsigned depth = 0;
  std::size_t size = 0;
};

Result<Data> ArchiveWriter::archivedData(const Value& root, PropertyListFormat format) try {
  Archive archive(format);
  std::optional<Data> data = archive.written(archive.uid(root));
  if (data) return *std::move(data);
  return Error("NSCocoaErrorDomain", coderInvalidValue, "the archive cannot be written");
} catch (const NSException& exception) {
  return Error("NSCocoaErrorDomain", coderInvalidValue, exception.reason());
}

void ArchiveWriter::encodeObject(const std::optional<Value>& object, std::string_view key) {
  const std::string stored = checkedKey(key);
  setItem(fields_, stored.c_str(), plistUID(object ? archive_.uid(*object) : 0));
}

void ArchiveWriter::encodeInteger(std::int64_t value, std::string_view key) {
  setItem(fields_, checkedKey(key).c_str(), plistNumber(Number(value)));
}

}  // namespace foundation
