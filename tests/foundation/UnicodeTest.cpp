#include <gtest/gtest.h>

#include "foundation/Unicode.h"

using namespace foundation;

TEST(Unicode, TellsWhiteSpaceFromOtherCharacters) {
  for (const char32_t c : U"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u200A\u2028\u2029\u202F\u3000") {
    EXPECT_EQ(isWhitespaceOrNewline(c), c != 0) << +c;
    EXPECT_EQ(isNewline(c), (c > 9 && c < 14) || c == 0x85 || (c | 1) == 0x2029) << +c;
  }
  for (const char32_t c : {U'a', U'\u200B', U'\uFEFF', char32_t(-1)}) {
    EXPECT_FALSE(isWhitespaceOrNewline(c) || isNewline(c)) << +c;
  }
}

TEST(Unicode, ConvertsCodePoints) {
  const std::u32string codePoints = U"a\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF";
  const std::string text = "a\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF";
  EXPECT_EQ(UTF8FromUTF32(codePoints), text);
  EXPECT_EQ(UTF32FromUTF8(text), codePoints);
  EXPECT_EQ(UTF16Length(text), 9u);
  EXPECT_EQ(UTF32FromUTF8("\xC3(\xF0\x9F\x98"), U"\uFFFD(\uFFFD");
  for (const char32_t* c : {U"\xD800", U"\xDFFF", U"\x110000"}) EXPECT_FALSE(UTF8FromUTF32(c));
}

TEST(Unicode, ComposesCompatibly) {
  const std::pair<const char*, const char*> rows[] = {
      {"u\u0308\uFB01\uFF0E\u3000\u3002", "\u00FCfi. \u3002"},
      {"\xFF\uFF21\xED\xA0\x80", "\uFFFD\x41\uFFFD\uFFFD\uFFFD"}};
  for (const auto& [text, result] : rows) {
    EXPECT_EQ(precomposedStringWithCompatibilityMapping(text), result) << text;
  }
  // A row of marks that is long and out of order.
  std::string marks = "a", ordered = "\u00E4";
  for (int i = 0; i < 100'000; ++i) marks += "\u0316\u0344", ordered += "\u0316";
  for (int i = 0; i < 100'000; ++i) ordered += i > 0 ? "\u0308\u0301" : "\u0301";
  EXPECT_TRUE(precomposedStringWithCompatibilityMapping(marks + "\uFF21") == ordered + "A");
}
