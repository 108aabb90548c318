#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/archive/PlistNode.h"

// The property-list library follows a list by recursion, and makes a copy of an object of the
// binary format for each reference to it. Both are bounded here, before it sees the bytes. It ends
// the program over a key with a zero character, so that is refused here as well.

namespace foundation {
namespace {

constexpr double nodeCost = 64;

class BinaryBounds {
 public:
  explicit BinaryBounds(DataView data) : data_(data) {}

  bool isBounded() {
    constexpr std::size_t header = 8, trailer = 32;
    if (data_.size() < header + trailer) return false;
    const std::size_t end = data_.size() - trailer;
    offsetSize_ = data_[end + 6];
    referenceSize_ = data_[end + 7];
    const std::uint64_t count = integer(end + 8, 8);
    const std::uint64_t root = integer(end + 16, 8);
    table_ = integer(end + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8)
      return false;
    if (table_ < header || table_ >= end || count > (end - table_) / offsetSize_) return false;
    objects_.resize(count);
    if (!visit(root, 0)) return false;
    return objects_[root].height <= maximumPlistDepth &&
           objects_[root].cost <= maximumExpansion(data_.size());
  }

 private:
  // The first half of an object's first byte.
  enum Kind : unsigned { blob = 4, ascii, utf16, utf8, uid, array = 0xA, dictionary = 0xD };

  enum class State : std::uint8_t { Unseen, Open, Done };
  struct Object {
    double cost = nodeCost;  // of the object with all that it refers to
    unsigned height = 0;     // containers inside each other, this one included
    State state = State::Unseen;
    bool isKey = false;  // fit to be one
  };

  std::uint64_t integer(std::uint64_t position, unsigned size) const {
    std::uint64_t value = 0;
    for (unsigned i = 0; i < size; ++i) value = value << 8 | data_[position + i];
    return value;
  }

  // Where the content of the object at `offset` begins, and how many bytes, characters, references
  // or pairs of references it has; nothing when the bytes make no sense.
  std::optional<std::pair<std::uint64_t, std::uint64_t>> content(std::uint64_t offset) const {
    if (offset >= table_) return std::nullopt;
    const unsigned kind = data_[offset] >> 4;
    const std::uint64_t length = data_[offset] & 0xF;
    const std::uint64_t begin = offset + 1;
    if (kind < blob || kind == uid || length != 0xF) return std::pair(begin, length);
    if (begin >= table_ || data_[begin] >> 4 != 1) return std::nullopt;
    const unsigned size = 1U << (data_[begin] & 0xF);
    if (size > 8 || size >= table_ - begin) return std::nullopt;
    return std::pair(begin + 1 + size, integer(begin + 1, size));
  }

  // Follows each object once. `depth` is that of the containers around it.
  bool visit(std::uint64_t index, unsigned depth) {
    if (index >= objects_.size() || depth > maximumPlistDepth) return false;
    Object& object = objects_[index];
    if (object.state != State::Unseen) return object.state == State::Done;
    object.state = State::Open;
    const std::uint64_t offset = integer(table_ + index * offsetSize_, offsetSize_);
    const auto extent = content(offset);
    if (!extent || extent->second > data_.size()) return false;
    const auto [begin, length] = *extent;
    const unsigned kind = data_[offset] >> 4;
    bool isFit = true;
    if (kind == array) isFit = visitAll(object, begin, length, 0, depth);
    if (kind == dictionary) isFit = visitAll(object, begin, 2 * length, length, depth);
    if (kind >= blob && kind < uid) isFit = addBytes(object, kind, begin, length);
    object.state = State::Done;
    return isFit;
  }

  // Counts the objects that a container refers to into it, the first ones of them being keys.
  bool visitAll(Object& container, std::uint64_t begin, std::uint64_t count, std::uint64_t keys,
                unsigned depth) {
    if (count > (table_ - begin) / referenceSize_) return false;
    container.height = 1;
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::uint64_t index = integer(begin + i * referenceSize_, referenceSize_);
      if (!visit(index, depth + 1)) return false;
      const Object& object = objects_[index];
      if (i < keys && !object.isKey) return false;
      container.cost += object.cost;
      container.height = std::max(container.height, object.height + 1);
    }
    return true;
  }

  bool addBytes(Object& object, unsigned kind, std::uint64_t begin, std::uint64_t length) {
    const unsigned characterSize = kind == utf16 ? 2 : 1;
    if (length > (table_ - begin) / characterSize) return false;
    object.cost += 3.0 * static_cast<double>(length);
    object.isKey =
        kind != blob && !hasZero(data_.subspan(begin, length * characterSize), characterSize);
    return true;
  }

  // Whether a text, ASCII or UTF-16, has a zero character.
  static bool hasZero(DataView text, unsigned characterSize) {
    for (std::size_t i = 0; i < text.size(); i += characterSize) {
      if (text[i] == 0 && text[i + characterSize - 1] == 0) return true;
    }
    return false;
  }

  DataView data_;
  unsigned offsetSize_ = 0;
  unsigned referenceSize_ = 0;
  std::uint64_t table_ = 0;
  std::vector<Object> objects_;
};

// What follows `end` in `text`; nothing when `end` is not in it.
std::optional<std::string_view> after(std::string_view text, std::string_view end) {
  const std::size_t found = text.find(end);
  if (found == text.npos) return std::nullopt;
  return text.substr(found + end.size());
}

// Whether the library reads on beyond the end of the tag: it skips angle brackets inside quotes
// and inside an embedded document type, so that they could hide tags from the count.
bool hidesTags(std::string_view tag) {
  return std::ranges::count(tag, '"') % 2 != 0 || tag.find('[') != tag.npos;
}

// How the tag, without its angle brackets, changes the depth.
int depthChange(std::string_view tag) {
  const bool closing = tag.starts_with('/');
  if (closing) tag.remove_prefix(1);
  const std::string_view name = tag.substr(0, tag.find_first_of(" \t\r\n/"));
  if (name != "array" && name != "dict") return 0;
  if (closing) return -1;
  return tag.ends_with('/') ? 0 : 1;
}

}  // namespace

bool isBoundedBinaryPlist(DataView data) { return BinaryBounds(data).isBounded(); }

bool isBoundedXMLPlist(std::string_view xml) {
  if (xml.find('\0') != xml.npos) return false;
  int depth = 0;
  std::optional<std::string_view> rest = xml;
  while (true) {
    const std::size_t open = rest->find('<');
    if (open == rest->npos) return true;
    rest = rest->substr(open);
    if (rest->starts_with("<!--")) {
      rest = after(rest->substr(4), "-->");
    } else if (rest->starts_with("<![CDATA[")) {
      rest = after(*rest, "]]>");
    } else {
      const bool isInstruction = rest->starts_with("<?");
      const std::size_t close = isInstruction ? rest->find("?>") : rest->find_first_of("<>", 1);
      if (close == rest->npos || (*rest)[close] == '<') return false;
      const std::string_view tag = rest->substr(1, close - 1);
      if (hidesTags(tag)) return false;
      depth += depthChange(tag);
      rest = rest->substr(close + 1);
    }
    if (!rest || depth < 0 || depth > static_cast<int>(maximumPlistDepth)) return false;
  }
}

}  // namespace foundation
