#include "foundation/archive/PlistNode.h"

#include <bit>
#include <cmath>
#include <limits>

#include <locale.h>

#include "foundation/StringEncoding.h"

namespace foundation {
namespace {

constexpr std::uint64_t largestInteger = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t microseconds = 1'000'000;
constexpr std::int64_t referenceSeconds = 978'307'200;  // 2001-01-01 since 1970-01-01

// The library's XML follows the locale of the thread; this one has numbers with a point.
class NumericLocale {
 public:
  NumericLocale() : previous_(uselocale(plain())) {}
  ~NumericLocale() { uselocale(previous_); }
  NumericLocale(const NumericLocale&) = delete;
  NumericLocale& operator=(const NumericLocale&) = delete;

 private:
  static locale_t plain() {
    static const locale_t locale = newlocale(LC_NUMERIC_MASK, "C", nullptr);
    return locale;
  }

  locale_t previous_;
};

PlistNode parseXML(std::string_view xml) {
  const NumericLocale locale;
  plist_t node = nullptr;
  plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &node);
  return PlistNode(node);
}

PlistNode parseBinary(std::string_view bytes) {
  plist_t node = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
  return PlistNode(node);
}

struct FreeText {
  void operator()(char* text) const { std::free(text); }
};

// The object of a node that is no container, as the binary format writes it: a marker, then the
// content. The library's own readers lose the sign of dates and the width of integers.
std::string binaryObject(plist_t node) {
  char* raw = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(node, &raw, &size);
  const std::unique_ptr<char, FreeText> text(raw);
  constexpr std::size_t header = 8;
  return size > header ? std::string(raw + header, size - header) : std::string();
}

Value numberOf(plist_t node) {
  std::uint64_t value = 0;
  plist_get_uint_val(node, &value);
  constexpr char wide = 0x14;
  if (value > largestInteger && binaryObject(node).starts_with(wide)) return Number(value);
  return Number(static_cast<std::int64_t>(value));
}

std::optional<Value> dateOf(plist_t node) {
  const std::string object = binaryObject(node);
  if (object.size() < 9) return std::nullopt;
  std::uint64_t bits = 0;
  for (std::size_t i = 1; i <= 8; ++i) bits = bits << 8 | static_cast<std::uint8_t>(object[i]);
  const std::optional<Date> date = dateAtReference(std::bit_cast<double>(bits));
  return date ? std::optional<Value>(*date) : std::nullopt;
}

}  // namespace

bool isPlistText(std::string_view text, PropertyListFormat format) {
  for (const char c : text) {
    const bool allowed = c == '\t' || c == '\n' || c == '\r';
    if (c == 0) return false;
    if (c > 0 && c < ' ' && !allowed && format == PropertyListFormat::XML) return false;
  }
  return isValidUTF8(text);
}

PlistNode plistNumber(const Number& number) {
  const char type = number.objCType();
  if (type == 'f' || type == 'd') return PlistNode(plist_new_real(number.doubleValue()));
  const std::uint64_t bits = number.unsignedLongLongValue();  // of a negative one, two's complement
  if (type == 'c' && bits <= 1) return PlistNode(plist_new_bool(bits != 0));
  if (bits > largestInteger) {  // the library's own maker takes no sign
    return parseXML("<?xml version=\"1.0\"?><plist version=\"1.0\"><integer>" +
                    number.stringValue() + "</integer></plist>");
  }
  return PlistNode(plist_new_uint(bits));
}

PlistNode plistText(const std::string& text) { return PlistNode(plist_new_string(text.c_str())); }

PlistNode plistData(DataView data) {
  return PlistNode(plist_new_data(reinterpret_cast<const char*>(data.data()), data.size()));
}

double secondsSinceReference(Date date) {
  const std::int64_t count = date.time_since_epoch().count();
  const std::int64_t whole = count / microseconds - referenceSeconds;
  return static_cast<double>(whole) +
         static_cast<double>(count % microseconds) / static_cast<double>(microseconds);
}

std::optional<Date> dateAtReference(double seconds) {
  constexpr double limit = 9.2e12;
  if (!(std::abs(seconds) < limit)) return std::nullopt;
  const double whole = std::floor(seconds);
  const auto fraction = std::llround((seconds - whole) * static_cast<double>(microseconds));
  const std::int64_t since1970 = static_cast<std::int64_t>(whole) + referenceSeconds;
  return Date(Date::duration(since1970 * microseconds + fraction));
}

PlistNode plistDate(Date date, PropertyListFormat format) {
  using std::chrono::sys_days, std::chrono::year, std::chrono::January;
  const double seconds = secondsSinceReference(date);
  if (dateAtReference(seconds) != date) return nullptr;
  if (format == PropertyListFormat::XML) {
    const bool fourDigits =
        date >= sys_days(year(1000) / January / 1) && date < sys_days(year(10000) / January / 1);
    if (!fourDigits || seconds != std::floor(seconds)) return nullptr;
  }
  // A list of this one object: the library's own maker of dates takes 32 bits.
  std::string list("bplist00\x33");
  const auto bits = std::bit_cast<std::uint64_t>(seconds);
  for (int shift = 56; shift >= 0; shift -= 8) list += static_cast<char>(bits >> shift);
  list += '\x08';  // offset table
  list += std::string(6, '\0') + "\x01\x01";
  for (const char number : {'\x01', '\0', '\x11'}) list += std::string(7, '\0') + number;
  return parseBinary(list);
}

std::optional<Value> scalarOfPlist(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t value = 0;
      plist_get_bool_val(node, &value);
      return Number(value != 0);
    }
    case PLIST_UINT:
      return numberOf(node);
    case PLIST_REAL: {
      double value = 0;
      plist_get_real_val(node, &value);
      return Number(value);
    }
    case PLIST_STRING:
      return Value(*textOfPlist(node));
    case PLIST_DATE:
      return dateOf(node);
    case PLIST_DATA: {
      std::uint64_t size = 0;
      const auto* bytes = reinterpret_cast<const std::uint8_t*>(plist_get_data_ptr(node, &size));
      return Value(bytes ? Data(bytes, bytes + size) : Data());
    }
    default:
      return std::nullopt;
  }
}

std::optional<std::uint64_t> uidOfPlist(plist_t node) {
  std::uint64_t uid = 0;
  if (PLIST_IS_UID(node)) {
    plist_get_uid_val(node, &uid);
    return uid;
  }
  if (!PLIST_IS_DICT(node) || plist_dict_get_size(node) != 1) return std::nullopt;
  const plist_t number = plist_dict_get_item(node, "CF$UID");
  if (!PLIST_IS_UINT(number)) return std::nullopt;
  plist_get_uint_val(number, &uid);
  return uid;
}

std::optional<std::string_view> textOfPlist(plist_t node) {
  if (!PLIST_IS_STRING(node)) return std::nullopt;
  std::uint64_t size = 0;
  const char* text = plist_get_string_ptr(node, &size);
  return text ? std::string_view(text, size) : std::string_view();
}

std::string archiveKey(std::string_view key) {
  std::string stored(key.starts_with('$') ? 1 : 0, '$');
  return stored += key;
}

std::optional<Data> writePlist(plist_t root, PropertyListFormat format) {
  char* raw = nullptr;
  std::uint32_t size = 0;
  if (format == PropertyListFormat::XML) {
    const NumericLocale locale;
    plist_to_xml(root, &raw, &size);
  } else {
    plist_to_bin(root, &raw, &size);
  }
  const std::unique_ptr<char, FreeText> text(raw);
  if (!text) return std::nullopt;
  return Data(reinterpret_cast<const std::uint8_t*>(raw),
              reinterpret_cast<const std::uint8_t*>(raw) + size);
}

PlistNode readPlist(DataView data) {
  if (data.size() > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  std::string_view text = textOf(data);
  if (text.starts_with("bplist")) return isBoundedBinaryPlist(data) ? parseBinary(text) : nullptr;
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  return isBoundedXMLPlist(text) ? parseXML(text) : nullptr;
}

}  // namespace foundation
