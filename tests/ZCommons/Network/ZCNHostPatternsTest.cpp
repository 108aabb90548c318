#include <random>

#include <gtest/gtest.h>

#include "ZCommons/Network/ZCNHostPatterns.h"
#include "foundation/RegularExpression.h"

using foundation::RegularExpression;
using namespace ZCNHostPatterns;

TEST(ZCNHostPatterns, AgreeWithTheEngineOnShortTexts) {
  using Pieces = std::vector<std::string_view>;
  const Pieces names = {"a", "Z", "9", "-", ".", "_", "\n", "\u017F", "\u212A", "\u00E9", "\xC5"};
  const Pieces numbers = {"0.", "1.", "25", "249.", "256.", "09.", "00", ".", "1", "\n", "\u0661"};
  // clang-format off
  const Pieces groups = {
      ":", "::", "a:", "F0:", "1:2:3:", "10000", "g", "\n", "1.2.3.4", "255.", "250.1", "256.",
      "26\u0661.1.1.1", "25\u0661.1.1.1", "\u0661.", "01.", "1\u0966.2\u0661.24\u0661.0"};
  const std::tuple<std::string_view, bool (*)(std::string_view), Pieces> forms[] = {
      {domainName, matchesDomainName, names}, {IPv4, matchesIPv4, numbers},
      {IPv6, matchesIPv6, groups}};
  // clang-format on
  std::mt19937 random(1);
  for (const auto& [pattern, matches, pieces] : forms) {
    const auto expression = RegularExpression::regularExpressionWithPattern(
        pattern, RegularExpression::caseInsensitive);
    int hits = 0;
    for (int i = 0; i < 60'000; ++i) {
      std::string text;
      for (auto left = random() % 10; left > 0; --left) text += pieces[random() % pieces.size()];
      const auto match = expression->firstMatchInString(text);
      const bool isWhole = match && match->front()->length == text.size();
      ASSERT_EQ(matches(text), isWhole) << pattern << "\n" << text;
      hits += isWhole;
    }
    EXPECT_GT(hits, 100) << pattern;
  }
}

TEST(ZCNHostPatterns, TakeLinearTimeForLongTexts) {
  const std::string label(1 << 22, 'a');
  EXPECT_TRUE(matchesDomainName(label));
  EXPECT_FALSE(matchesDomainName(label + "!"));
  EXPECT_FALSE(matchesIPv6(label + "::" + std::string(1 << 22, ':')));
}
