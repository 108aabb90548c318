#include <gtest/gtest.h>

#include "ZCommons/Network/NSURLUtils.h"

TEST(NSURLUtils, CutsURLs) {
  // clang-format off
  const std::tuple<const char*, std::optional<std::string>, const char*> rows[] = {
      {"http://h:8080/a?b", "h:8080", "/a?b"}, {"http://h:0/a/", "h", "/a/"},
      {"http://[::1]:80/a", "::1:80", "/a"}, {"http://h", "h", "http://h"}, {"//h/a", "h", "/a"},
      {"a/b", {}, "a/b"}, {"http://:80", "(null):80", "http://:80"}, {"file:///a/b", {}, "/a/b"},
      {"mailto:a?x://b/c", {}, "/c"}};
  // clang-format on
  for (const auto& [text, hostWithPort, relative] : rows) {
    const auto url = foundation::URL::URLWithString(text);
    EXPECT_EQ(NSURLUtils::hostWithPort(*url), hostWithPort) << text;
    EXPECT_EQ(NSURLUtils::relativeUrlString(*url), relative) << text;
  }
}
