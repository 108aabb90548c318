#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZCommons/Lang/ZCLWildcard.h"
#include "tests/support/RecordingLogger.h"

using foundation::RegularExpression;
using testing::Each;
using testing::ResultOf;

TEST(ZCLWildcard, MatchesWholeNames) {
  struct Row {
    const char* wildcard;
    std::vector<std::string> matching;
    std::vector<std::string> others;
    unsigned options = RegularExpression::none;
  };
  const Row rows[] = {
      {"*.log", {"a.log"}, {"a.txt", "alog"}},
      {"*", {"a", "\xFF\xFE"}, {"", "a\n", "\ra"}},
      {"a?c", {"abc"}, {"ac", "abbc", "a\u2028c"}},
      {"abc", {"abc"}, {"ABC", "abc\n"}},
      {"?", {"\u00E4", "\U0001F600"}, {"\u0085"}},
      {"*a*b", {"abab", "\u00E4ab"}, {"abba"}},
      {"a\\*", {"a\\b"}, {"a*"}},
      {"[a]*", {"[a]b"}, {"ab"}},
      {"", {}, {"", "a"}},
      // The longest literal piece has to be there as it is, whatever the case of the rest.
      {"a?BC", {"AxBC"}, {"axbc"}, RegularExpression::caseInsensitive},
      {"a?b*", {"a\nb\n"}, {}, RegularExpression::dotMatchesLineSeparators},
      {"a", {"a"}, {"b\na"}, RegularExpression::anchorsMatchLines},
  };
  for (const Row& row : rows) {
    const auto wildcard = ZCLWildcard::wildcard(row.wildcard, row.options);
    const auto matches = [&](const std::string& text) { return wildcard->matchWildcard(text); };
    EXPECT_THAT(row.matching, Each(ResultOf(matches, true))) << row.wildcard;
    EXPECT_THAT(row.others, Each(ResultOf(matches, false))) << row.wildcard;
  }
  EXPECT_FALSE(ZCLWildcard::wildcard("*")->matchWildcard(nullptr));
}

TEST(ZCLWildcard, MatchesAsItsExpression) {
  const std::string pieces[] = {
      "a",      "b",        "ab",           "*",        "?",          "*",  "?", "\n",     "\r",
      "\u0085", "\u2028",   "\u00E4",       "\u20AC",   "\U0001F600", "\\", ".", "\uFFFD", "\xFF",
      "\xC3",   "\xE2\x82", "\xED\xA0\x80", "\xF0\x9F", "\x80",       "\v"};
  std::mt19937 random(1);
  const auto make = [&](std::size_t limit) {
    std::string text;
    // Mostly of few different pieces, so that texts match often enough.
    const std::size_t variety = random() % 4 == 0 ? std::size(pieces) : 7;
    for (auto count = random() % limit; count > 0; --count) text += pieces[random() % variety];
    return text;
  };
  int matches = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto wildcard = ZCLWildcard::wildcard(make(6));
    ASSERT_TRUE(wildcard);
    const std::string text = make(9);
    const auto match = wildcard->firstMatchInString(text);
    const bool expected = !text.empty() && text.find(wildcard->shortcut()) != std::string::npos &&
                          match && match->front()->length == text.size();
    matches += expected;
    ASSERT_EQ(wildcard->matchWildcard(text), expected)
        << testing::PrintToString(wildcard->patternString()) << testing::PrintToString(text);
  }
  EXPECT_GT(matches, 500);
}

TEST(ZCLWildcard, TellsItsParts) {
  const std::pair<const char*, const char*> shortcuts[] = {
      {"*", ""}, {"a*bc?de", "bc"}, {"abc", "abc"}, {"?\u00E4*a?", "\u00E4"}};
  for (const auto& [wildcard, shortcut] : shortcuts) {
    EXPECT_EQ(ZCLWildcard::wildcard(wildcard)->shortcut(), shortcut);
  }
  const auto wildcard = ZCLWildcard::wildcard("a\\*b?");
  EXPECT_EQ(wildcard->pattern(), "^a\\\\.*b.$");
  EXPECT_EQ(wildcard->patternString(), "a\\*b?");
  EXPECT_EQ(wildcard->stringValue(), "ZCLWildcard");
}

TEST(ZCLWildcard, WarnsOfWhatTheEngineRefuses) {
  const auto logger = support::RecordingLogger::add();
  const std::string wildcard(17'000'000, 'a');
  EXPECT_FALSE(ZCLWildcard::wildcard(wildcard));
  const auto lines = logger->numberedLines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0] == "2 52 (ZCLWildcard) Can't create regex for: " + wildcard);
  EXPECT_TRUE(lines[1].starts_with("2 53 (ZCLWildcard) Regex creation error: The value"));
}
