#include <random>
#include <string>

#include <gtest/gtest.h>

#include "ZCommons/Lang/ZCLWildcard.h"
#include "tests/support/RecordingLogger.h"

using foundation::RegularExpression;

TEST(ZCLWildcard, MatchesWholeNames) {
  struct Row {
    const char* wildcard;
    std::string text;
    bool matches;
  };
  const Row rows[] = {
      {"*.log", "a.log", true},
      {"*.log", "a.txt", false},
      {"*", "", false},
      {"*", "a", true},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"a?c", "abbc", false},
      {"abc", "ABC", false},
      {"a.c", "abc", false},
      {"?", "\u00E4", true},
      {"??", "\u00E4", false},
      {"?", "\U0001F600", true},
      {"*", "a\n", false},
      {"*", "\ra", false},
      {"a*b", "a\u2028b", false},
      {"?", "\u0085", false},
      {"abc", "abc\n", false},
      {"a\nb", "a\nb", true},
      {"*\n*", "a\nb", true},
      {"*", "\xFF\xFE", true},
      {"a*z", "a\xC3z", true},
      {"?b",
       "\xE2\x82"
       "b",
       true},
      {"**a**", "bab", true},
      {"*a*b", "abab", true},
      {"a\\*", "a\\b", true},
      {"[a]*", "[a]b", true},
      {"[a]*", "ab", false},
      {"", "a", false},
      {"?*?", "a", false},
      {"*?*?*", "ab", true},
  };
  for (const Row& row : rows) {
    const auto wildcard = ZCLWildcard::wildcard(row.wildcard);
    ASSERT_TRUE(wildcard) << row.wildcard;
    EXPECT_EQ(wildcard->matchWildcard(row.text), row.matches) << row.wildcard << " " << row.text;
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

TEST(ZCLWildcard, FollowsTheOptionsOfTheExpression) {
  struct Row {
    const char* wildcard;
    unsigned options;
    const char* text;
    bool matches;
  };
  const Row rows[] = {
      {"?B", RegularExpression::caseInsensitive, "ab", false},  // the literal piece counts as it is
      {"a?", RegularExpression::caseInsensitive, "ab", true},
      {"a?b", RegularExpression::dotMatchesLineSeparators, "a\nb", true},
      {"a*", RegularExpression::dotMatchesLineSeparators, "a\n", true},
      {"a", RegularExpression::anchorsMatchLines, "b\na", false},
  };
  for (const Row& row : rows) {
    const auto wildcard = ZCLWildcard::wildcard(row.wildcard, row.options);
    EXPECT_EQ(wildcard->matchWildcard(row.text), row.matches) << row.wildcard;
  }
}

TEST(ZCLWildcard, TellsItsParts) {
  const std::pair<const char*, const char*> shortcuts[] = {
      {"*", ""}, {"", ""}, {"a*bc?de", "bc"}, {"abc", "abc"}, {"?\u00E4*a?", "\u00E4"}};
  for (const auto& [wildcard, shortcut] : shortcuts) {
    EXPECT_EQ(ZCLWildcard::extractShortcut(wildcard), shortcut) << wildcard;
  }
  const auto wildcard = ZCLWildcard::wildcard("a\\*b?");
  EXPECT_EQ(wildcard->pattern(), "^a\\\\.*b.$");
  EXPECT_EQ(wildcard->patternString(), "a\\*b?");
  EXPECT_EQ(wildcard->shortcut(), "a\\");
  EXPECT_EQ(wildcard->stringValue(), "ZCLWildcard");
}

TEST(ZCLWildcard, WarnsOfWhatTheEngineRefuses) {
  const auto logger = support::RecordingLogger::add();
  const std::string wildcard(17'000'000, 'a');
  EXPECT_FALSE(ZCLWildcard::wildcard(wildcard));
  const auto messages = logger->messages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_TRUE(messages[0].logMsg() == "(ZCLWildcard) Can't create regex for: " + wildcard);
  EXPECT_EQ(messages[0].lineNumber(), 52);
  EXPECT_TRUE(messages[1].logMsg().starts_with("(ZCLWildcard) Regex creation error: The value"));
  EXPECT_EQ(messages[1].lineNumber(), 53);
  EXPECT_EQ(messages[1].logFlag(), DDLogFlag::warning);
}
