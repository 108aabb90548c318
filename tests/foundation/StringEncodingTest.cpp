#include <gtest/gtest.h>

#include "foundation/StringEncoding.h"

using foundation::dataOf;
using foundation::StringEncoding;

TEST(StringEncoding, TellsUTF8FromOtherBytes) {
  const std::pair<std::string_view, std::size_t> valid[] = {
      {"a", 1}, {"\u00E4b", 2}, {"\u20AC", 3}, {"\U0001F600", 4}, {std::string_view("\0", 1), 1}};
  for (const auto& [text, firstLength] : valid) {
    EXPECT_TRUE(foundation::isValidUTF8(text)) << text;
    EXPECT_EQ(foundation::firstCharacter(text).length, firstLength) << text;
  }
  const std::pair<std::string_view, std::size_t> invalid[] = {
      {"\x80", 1},
      {"\xC0\xAF", 1},          // overlong
      {"\xE2\x82", 2},          // cut
      {"\xF0\x9F\x98z", 3},     // broken off
      {"\xED\xA0\x80", 1},      // surrogate
      {"\xF4\x90\x80\x80", 1},  // beyond U+10FFFF
  };
  for (const auto& [text, firstLength] : invalid) {
    EXPECT_FALSE(foundation::isValidUTF8(text)) << testing::PrintToString(text);
    EXPECT_EQ(foundation::firstCharacter(text).length, firstLength) << testing::PrintToString(text);
  }
}

TEST(StringEncoding, ConvertsBothWays) {
  using foundation::dataFromString, foundation::stringFromData;
  const std::tuple<StringEncoding, std::string_view, std::string> rows[] = {
      {StringEncoding::UTF8, "\xC3\xA4", "\u00E4"},
      {StringEncoding::ASCII, "a\r\n", "a\r\n"},
      {StringEncoding::ISOLatin1, "a\xE4\xFF\x85", "a\u00E4\u00FF\u0085"},
  };
  for (const auto& [encoding, bytes, text] : rows) {
    EXPECT_EQ(stringFromData(dataOf(bytes), encoding), text);
    EXPECT_EQ(foundation::textOf(dataFromString(text, encoding).value()), bytes);
  }
  EXPECT_FALSE(stringFromData(dataOf("\xE4"), StringEncoding::UTF8));
  EXPECT_FALSE(stringFromData(dataOf("\xE4"), StringEncoding::ASCII));
  EXPECT_FALSE(dataFromString("\u20AC", StringEncoding::ISOLatin1));
  EXPECT_FALSE(dataFromString("\u00E4", StringEncoding::ASCII));
  EXPECT_FALSE(dataFromString("\xC3", StringEncoding::ISOLatin1));
}
