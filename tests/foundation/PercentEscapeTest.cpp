#include <optional>
#include <string>

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
  const struct {
    const char* text;
    std::optional<std::string> result;
  } rows[] = {
      {"", ""},
      {"a%20b%2f%2F", "a b//"},
      {"%C3%A9", "\xC3\xA9"},
      {"%C3", std::nullopt},
      {"%", std::nullopt},
      {"a%2", std::nullopt},
      {"%+1", std::nullopt},
      {"%0g", std::nullopt},
      {"\xFF", std::nullopt},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(stringByReplacingPercentEscapes(row.text), row.result) << row.text;
  }
}
