#include <random>

#include <gtest/gtest.h>

#include "ZCommons/Network/ZCNUserAgent.h"

TEST(ZCNUserAgent, TellsBrowserAndVersion) {
  const std::tuple<foundation::NullableText, const char*, std::optional<std::string>> rows[] = {
      {"Mozilla/5.0 (X11) Chrome/71.0.3578.98 Safari/537.36", "Google Chrome", "71.0.3578.98"},
      {"Mozilla/4.0 (compatible; MSIE 10.0; Windows)", "Internet Explorer", "10.0"},
      {"Mozilla/4.0 (MSIE 10.0; Windows)", "Internet Explorer", std::nullopt},
      {"version/. Safari/605.1.15", "Safari", "."},
      {"Firefox/ \U0001F600 firefox/64.0", "Mozilla Firefox", "64.0"},
      {"firefox/64.0 Version/3", "Opera", "3"},
      {nullptr, "Opera", std::nullopt},
  };
  for (const auto& [value, name, version] : rows) {
    const ZCNUserAgent agent(value);
    EXPECT_EQ(agent.browser().name(), name) << value.view();
    EXPECT_EQ(agent.browserVersion(), version) << value.view();
  }
}

TEST(ZCNBrowser, HonoursItsListsAndGroup) {
  const std::tuple<const char*, int, std::optional<std::string>> rows[] = {
      {"v/?(\\d)", 0, "V1"}, {"v/?(\\d)", 1, "1"}, {"v/?(\\d)", 2, {}},
      {"v/?(\\d)", -1, {}},  {"v(", 1, {}},        {"(x)?v", 1, {}}};
  for (const auto& [pattern, group, version] : rows) {
    const ZCNBrowser browser("B", pattern, group, {"One", "Two", ""}, {{"Not", ""}});
    EXPECT_EQ(browser.version("Two V1"), version) << pattern << group;
    EXPECT_TRUE(browser.isMatch("Two V1"));
    for (const char* value : {"two", "Two Not", ""}) EXPECT_FALSE(browser.isMatch(value));
  }
}

TEST(ZCNBrowser, FindsTheVersionsThatItsExpressionFinds) {
  constexpr const char* pieces[] = {
      "Version", "/", "VER\u017fION/", "compatible; ", "msie ", "1",   ";",
      " ",       ".", "\ufb01refox/",  "Fire",         "fox/",  "\xff"};
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string value;
    for (auto left = random() % 9; left > 0; --left) value += pieces[random() % std::size(pieces)];
    for (const ZCNBrowser* const browser : ZCNBrowser::BROWSERS()) {
      std::optional<std::string> expected;
      if (const auto match = browser->versionRegex()->firstMatchInString(value)) {
        expected = value.substr((*match)[1]->location, (*match)[1]->length);
      }
      ASSERT_EQ(browser->version(value), expected) << value;
    }
  }
}

// A quadratic search would take minutes for each.
TEST(ZCNBrowser, TakesHostileValuesOfAMegabyte) {
  for (const std::string piece : {"Version/", "compatible; MSIE 1", "1", "Version/\u017f"}) {
    std::string value = "compatible; MSIE 1";
    while (value.size() < 1000000) value += piece;
    EXPECT_FALSE(ZCNUserAgent(value).browserVersion());
  }
}
