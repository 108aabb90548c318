#include <gtest/gtest.h>

#include "foundation/StringEncoding.h"

using foundation::dataOf;
using foundation::StringEncoding;

TEST(StringEncoding, TellsUTF8FromOtherBytes) {
  struct Row {
    std::string_view text;
    std::size_t firstLength;
    bool valid;
  };
  const Row rows[] = {
      {"a", 1, true},
      {"\u00E4b", 2, true},
      {"\u20AC", 3, true},
      {"\U0001F600", 4, true},
      {std::string_view("\0", 1), 1, true},
      {"\x80", 1, false},
      {"\xC0\xAF", 1, false},          // overlong
      {"\xE2\x82", 2, false},          // cut
      {"\xE2\x82z", 2, false},         // broken off
      {"\xED\xA0\x80", 1, false},      // surrogate
      {"\xF4\x90\x80\x80", 1, false},  // beyond U+10FFFF
      {"\xF0\x9F\x98", 3, false},
      {"\xFF", 1, false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(foundation::isValidUTF8(row.text), row.valid) << testing::PrintToString(row.text);
    EXPECT_EQ(foundation::firstCharacter(row.text).length, row.firstLength)
        << testing::PrintToString(row.text);
  }
}

TEST(StringEncoding, ConvertsBothWays) {
  struct Row {
    StringEncoding encoding;
    std::string_view bytes;
    std::optional<std::string> text;
  };
  const Row rows[] = {
      {StringEncoding::UTF8, "\xC3\xA4", "\u00E4"},
      {StringEncoding::UTF8, "\xE4", std::nullopt},
      {StringEncoding::ASCII, "a\r\n", "a\r\n"},
      {StringEncoding::ASCII, "\xE4", std::nullopt},
      {StringEncoding::ISOLatin1, "a\xE4\xFF\x85", "a\u00E4\u00FF\u0085"},
      {StringEncoding::ISOLatin1, "", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(foundation::stringFromData(dataOf(row.bytes), row.encoding), row.text);
    if (!row.text) continue;
    const auto data = foundation::dataFromString(*row.text, row.encoding);
    ASSERT_TRUE(data);
    EXPECT_EQ(foundation::textOf(*data), row.bytes);
  }
  EXPECT_FALSE(foundation::dataFromString("\u20AC", StringEncoding::ISOLatin1));
  EXPECT_FALSE(foundation::dataFromString("\u00E4", StringEncoding::ASCII));
  EXPECT_FALSE(foundation::dataFromString("\xC3", StringEncoding::ISOLatin1));
}
