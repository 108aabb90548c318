#include <string>

#include <gtest/gtest.h>

#include "foundation/RegularExpression.h"

using foundation::RegularExpression;
using Match = RegularExpression::Match;
using Range = RegularExpression::Range;

TEST(RegularExpression, FindsTheFirstMatchInBytes) {
  struct Row {
    const char* pattern;
    unsigned options;
    const char* text;
    std::optional<Match> match;
  };
  const Row rows[] = {
      {"b+", 0, "abbc", Match{Range{1, 2}}},
      {"(a)|(b)", 0, "\u00E4b", Match{Range{2, 1}, std::nullopt, Range{2, 1}}},
      {"\u00E4(.)", 0, "-\u00E4\u20AC", Match{Range{1, 5}, Range{3, 3}}},
      {"B", RegularExpression::caseInsensitive, "ab", Match{Range{1, 1}}},
      {"a.c", 0, "a\nc", std::nullopt},
      {"a.c", RegularExpression::dotMatchesLineSeparators, "a\nc", Match{Range{0, 3}}},
      {"^a$", 0, "a\n", Match{Range{0, 1}}},
      {"^b$", RegularExpression::anchorsMatchLines, "a\nb", Match{Range{2, 1}}},
      {"a.", RegularExpression::ignoreMetacharacters, "ab a.", Match{Range{3, 2}}},
      {"^..$", 0, "\xFF\xC3", Match{Range{0, 2}}},
      {"", 0, "", Match{Range{0, 0}}},
  };
  for (const Row& row : rows) {
    const auto expression =
        RegularExpression::regularExpressionWithPattern(row.pattern, row.options);
    ASSERT_TRUE(expression) << row.pattern;
    EXPECT_EQ(expression->firstMatchInString(row.text), row.match) << row.pattern;
    EXPECT_EQ(expression->matches(row.text), row.match.has_value()) << row.pattern;
  }
}

TEST(RegularExpression, EscapedTextMatchesItselfOnly) {
  std::string text;
  for (char c = 1; c < 127; ++c) text += c;
  const auto expression = RegularExpression::regularExpressionWithPattern(
      RegularExpression::escapedPatternForString(text));
  EXPECT_EQ(expression->firstMatchInString(text), (Match{Range{0, text.size()}}));
}

TEST(RegularExpression, GivesUpWhatIsNoneOrWouldTakeForever) {
  EXPECT_EQ(RegularExpression::regularExpressionWithPattern("a\n(b").error().localizedDescription(),
            "The value is not a regular expression: U_REGEX_MISMATCHED_PAREN at line 2, offset 2.");
  const auto expression = RegularExpression::regularExpressionWithPattern("^(a|a|aa)*$");
  EXPECT_FALSE(expression->matches(std::string(200, 'a') + "b"));
}
