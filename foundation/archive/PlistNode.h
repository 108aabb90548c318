#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <plist/plist.h>

#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/Value.h"
#include "foundation/archive/PropertyList.h"

// What property lists and archives share: the nodes of the property-list library, and the values
// that it holds as they are.

namespace foundation {

struct PlistDeleter {
  void operator()(void* node) const { plist_free(node); }
};

/// A node outside any list, with all below it.
using PlistNode = std::unique_ptr<void, PlistDeleter>;

/// How deep a list, and how many objects inside each other an archive, may be.
inline constexpr unsigned maximumPlistDepth = 512;

/// What one list may weigh: bytes of its texts and data.
inline constexpr std::size_t maximumPlistSize = std::size_t{1} << 30;

/// What a list of `size` bytes may grow to when it is read.
constexpr double maximumExpansion(std::size_t size) {
  return 256.0 * 1024 * 1024 + 64.0 * static_cast<double>(size);
}

/// Whether a list of that format brings the text back byte for byte.
bool isPlistText(std::string_view text, PropertyListFormat format);

PlistNode plistNumber(const Number& number);
PlistNode plistText(const std::string& text);
PlistNode plistData(DataView data);

/// Seconds since 2001, and the date of such a number, to the nearest microsecond; nothing when it
/// is beyond all dates.
double secondsSinceReference(Date date);
std::optional<Date> dateAtReference(double seconds);

/// A node for the date; none when the format would round it.
PlistNode plistDate(Date date, PropertyListFormat format);

/// The value of a text, number, data or date node; nothing for other nodes.
std::optional<Value> scalarOfPlist(plist_t node);

/// The number of a UID node, or of the dictionary that stands for it in XML.
std::optional<std::uint64_t> uidOfPlist(plist_t node);

/// The text of a text node, else nothing. Valid as long as the node.
std::optional<std::string_view> textOfPlist(plist_t node);

/// A class's key as it stands in an archive: "$" begins the archive's own.
std::string archiveKey(std::string_view key);

/// Calls `visit(node)` for each element of an array.
template <class Visit>
void forEachElement(plist_t array, Visit&& visit) {
  plist_array_iter raw = nullptr;
  plist_array_new_iter(array, &raw);
  const std::unique_ptr<void, decltype(&std::free)> iterator(raw, &std::free);
  for (plist_t node = nullptr; plist_array_next_item(array, raw, &node), node;) visit(node);
}

/// Calls `visit(key, node)` for each entry of a dictionary.
template <class Visit>
void forEachEntry(plist_t dictionary, Visit&& visit) {
  plist_dict_iter raw = nullptr;
  plist_dict_new_iter(dictionary, &raw);
  const std::unique_ptr<void, decltype(&std::free)> iterator(raw, &std::free);
  while (true) {
    char* rawKey = nullptr;
    plist_t node = nullptr;
    plist_dict_next_item(dictionary, raw, &rawKey, &node);
    const std::unique_ptr<char, decltype(&std::free)> key(rawKey, &std::free);
    if (!node) return;
    visit(std::string(key ? key.get() : ""), node);
  }
}

/// The list as bytes; nothing when the library cannot write it.
std::optional<Data> writePlist(plist_t root, PropertyListFormat format);

/// The list in the bytes; null when they are not a list, or one too deep or too large to be read.
PlistNode readPlist(DataView data);

/// Whether the library can parse the bytes with bounded stack and memory.
bool isBoundedXMLPlist(std::string_view xml);
bool isBoundedBinaryPlist(DataView data);

}  // namespace foundation
