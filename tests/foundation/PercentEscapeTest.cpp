#include <gtest/gtest.h>

#include "foundation/PercentEscape.h"

using foundation::stringByAddingPercentEscapes;
using foundation::stringByReplacingPercentEscapes;

TEST(PercentEscape, EscapesWhatUrlsMayNotHold) {
  EXPECT_EQ(stringByAddingPercentEscapes("a-Z_.!~*'();/?:@&=+$,9"), "a-Z_.!~*'();/?:@&=+$,9");
  EXPECT_EQ(stringByAddingPercentEscapes("#[]% \"<>\\^`{|}\x7F"),
            "%23%5B%5D%25%20%22%3C%3E%5C%5E%60%7B%7C%7D%7F");
  EXPECT_EQ(stringByAddingPercentEscapes("\xC3\xA9"), "%C3%A9");
  EXPECT_EQ(stringByAddingPercentEscapes("a#b%20/c", "#%", "/"), "a#b%20%2Fc");
}

TEST(PercentEscape, ReplacesOnlyWellFormedEscapesOfUtf8) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""}, {"a%20b%2f%2F", "a b//"}, {"%C3%A9", "\xC3\xA9"}};
  for (const auto& [text, result] : rows) EXPECT_EQ(stringByReplacingPercentEscapes(text), result);
  for (const char* text : {"%C3", "%", "a%2", "%+1", "%0g", "\xFF"}) {
    EXPECT_EQ(stringByReplacingPercentEscapes(text), std::nullopt) << text;
  }
}
