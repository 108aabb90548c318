#include <gtest/gtest.h>

#include "foundation/CharacterSet.h"

using foundation::CharacterSet;

TEST(CharacterSet, HoldsTheCharactersOfItsKind) {
  const std::tuple<CharacterSet, std::u32string_view, std::u32string_view> rows[] = {
      {CharacterSet(), U"", U"a\u0000\U0010FFFF"},
      {CharacterSet::charactersInString("a;\xF0\x9F\x98\x80\xFF"), U"a;\U0001F600\uFFFD", U"b"},
      {*CharacterSet::characterSetWithPattern("[\\p{Nd}]"), U"09\u0660\uFF15", U"a\u00B2\u2167"},
      {CharacterSet::charactersInString("ab").inverted(), U"c\U0010FFFF", U"ab"}};
  for (const auto& [set, members, others] : rows) {
    const std::string name = set.pattern();
    for (const char32_t c : members) EXPECT_TRUE(set.characterIsMember(c)) << name;
    for (const char32_t c : others) EXPECT_FALSE(set.characterIsMember(c)) << name;
    EXPECT_FALSE(set.characterIsMember(0x110000) || set.characterIsMember(0xFFFFFFFF));
    EXPECT_EQ(CharacterSet::characterSetWithPattern(name), set) << name;
  }
}

TEST(CharacterSet, HasOnePatternForEqualSets) {
  EXPECT_EQ(CharacterSet::charactersInString("cab").pattern(), "[a-c]");
  EXPECT_EQ(CharacterSet::characterSetWithPattern("[[a-z]&[abc]{xy}]")->pattern(), "[a-c]");
  for (const char* bad : {"", "a", "[", "[a-c", "[\\p{nothing}]", "[a]x", "[\xFF"}) {
    EXPECT_EQ(CharacterSet::characterSetWithPattern(bad), std::nullopt) << bad;
  }
  EXPECT_FALSE(CharacterSet::characterSetWithPattern(std::string(100'000, '[')));
}
