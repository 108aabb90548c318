#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "foundation/archive/PropertyList.h"
#include "tests/foundation/archive/Samples.h"

namespace foundation {
namespace {

using std::string_literals::operator""s;

Value roundTrip(const Value& value, PropertyListFormat format) {
  const Result<Data> data = PropertyList::dataWithPropertyList(value, format);
  if (!data) return data.error().code();
  const Result<Value> back = PropertyList::propertyListWithData(*data);
  return back ? *back : Value(back.error().description());
}

TEST(PropertyList, BringsEveryValueBack) {
  for (const PropertyListFormat format : test::formats) {
    EXPECT_EQ(roundTrip(test::everyValue(), format), Value(test::everyValue()));
    EXPECT_EQ(roundTrip(true, format).as<Number>()->objCType(), 'c');
  }
}

TEST(PropertyList, ReadsTheFormsOfOtherPrograms) {
  const std::string_view xml =
      "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!DOCTYPE plist PUBLIC \"-//X//DTD\" \"http://x\">\n"
      "<!-- <array><array> --><plist version=\"1.0\"><dict><key>a</key><integer>-0x10</integer>"
      "<key>b</key><string>x<![CDATA[<array>]]>&#233;</string>"
      "<key>c</key><date>2100-01-01T00:00:00Z</date><key>d</key><array/>"
      "<key>$type</key><string>date</string></dict></plist>";
  EXPECT_EQ(
      PropertyList::propertyListWithData(dataOf(xml))->description(),
      "{$type = date; a = -16; b = x<array>\xC3\xA9; c = 2100-01-01 00:00:00 +0000; d = ();}");
}

// A binary list of `levels` arrays, each of which names the next one `times` times.
std::string pyramid(unsigned levels, unsigned times) {
  std::string list = "bplist00";
  std::string offsets;
  const auto number = [](std::size_t value, unsigned size) {
    std::string bytes;
    while (size-- > 0) bytes += static_cast<char>(value >> 8 * size);
    return bytes;
  };
  for (unsigned level = 0; level <= levels; ++level) {
    offsets += number(list.size(), 4);
    const unsigned count = level == levels ? 0 : times;
    list += static_cast<char>(0xA0 | count);
    for (unsigned i = 0; i < count; ++i) list += number(level + 1, 4);
  }
  const std::size_t table = list.size();
  return list + offsets + number(0, 6) + "\4\4" + number(levels + 1, 8) + number(0, 8) +
         number(table, 8);
}

std::string nestedXML(unsigned depth, std::string_view opening = "<array>",
                      std::string_view closing = "</array>") {
  std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
  for (unsigned i = 0; i < depth; ++i) xml += opening;
  for (unsigned i = 0; i < depth; ++i) xml += closing;
  return xml + "</plist>";
}

TEST(PropertyList, RefusesWhatIsDamagedOrBeyondBounds) {
  for (const std::string& good : {nestedXML(512), pyramid(511, 1), pyramid(10, 2)}) {
    EXPECT_TRUE(PropertyList::propertyListWithData(dataOf(good))) << good.substr(0, 60);
  }
  std::string zeroKey = "bplist00\xD1\1\1\x51k\x08\x0B";
  zeroKey += std::string(6, '\0') + "\1\1" + "\0\0\0\0\0\0\0\2"s + std::string(15, '\0') + "\x0D";
  EXPECT_TRUE(PropertyList::propertyListWithData(dataOf(zeroKey)));
  zeroKey[12] = '\0';
  std::string cyclic = pyramid(1, 1);
  cyclic[12] = '\0';  // the array's element is the array itself
  // Closing tags that only a hasty look at the text sees.
  const std::string quoted = nestedXML(1'000'000, "<array a=\"></array>\">", "");
  const std::string embedded = nestedXML(1'000'000, "<array><!DOCTYPE p [></array>]>", "");
  const std::string instructed = nestedXML(1'000'000, "<array><?x \"?></array><?\"?>", "");
  for (const std::string& bad : {""s, "no list"s, "bplist00"s, "<plist><dict>"s, nestedXML(513),
                                 nestedXML(200'000), quoted, embedded, instructed, pyramid(512, 1),
                                 pyramid(200'000, 1), pyramid(60, 2), cyclic, zeroKey}) {
    const Result<Value> value = PropertyList::propertyListWithData(dataOf(bad));
    ASSERT_FALSE(value) << bad.substr(0, 60);
    EXPECT_EQ(value.error().code(), 3840);
  }
}

TEST(PropertyList, WritesNothingThatItCannotReadAgain) {
  Value deep = Array();
  for (int i = 0; i < 511; ++i) deep = Array{deep};
  for (const PropertyListFormat format : test::formats) {
    EXPECT_EQ(roundTrip(deep, format), deep);
    EXPECT_EQ(roundTrip(Array{deep}, format), Value(3852));
  }
}

}  // namespace
}  // namespace foundation
