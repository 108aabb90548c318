#include <random>

#include <boost/url/parse.hpp>
#include <gtest/gtest.h>

#include "foundation/URIReference.h"

constexpr auto parse = foundation::URIReference::parse;

TEST(URIReference, ResolvesTheExamplesOfTheStandard) {
  const auto base = parse("http://a/b/c/d;p?q");
  // clang-format off
  const std::pair<const char*, const char*> rows[] = {
      {"g:h", "g:h"}, {"./g", "http://a/b/c/g"}, {"/g", "http://a/g"}, {"//g", "http://g"},
      {"?y", "http://a/b/c/d;p?y"}, {"g?y#s", "http://a/b/c/g?y#s"},
      {"#s", "http://a/b/c/d;p?q#s"}, {"", "http://a/b/c/d;p?q"}, {".", "http://a/b/c/"},
      {"../..", "http://a/"}, {"../../../g", "http://a/g"}, {"/../g", "http://a/g"},
      {"g.", "http://a/b/c/g."}, {"..g", "http://a/b/c/..g"}, {"./g/.", "http://a/b/c/g/"},
      {"g;x=1/../y", "http://a/b/c/y"}, {"g?y/../x", "http://a/b/c/g?y/../x"},
      {"http:g", "http:g"}};
  // clang-format on
  for (const auto& [text, result] : rows) EXPECT_EQ(parse(text)->resolvedAgainst(*base), result);
  EXPECT_EQ(parse("../g")->resolvedAgainst(*parse("a/b/c")), "a/g");
  EXPECT_EQ(parse("g")->resolvedAgainst(*parse("x://h")), "x://h/g");
}

TEST(URIReference, WithoutDotSegmentsStaysTheKindOfReferenceItWas) {
  const std::pair<const char*, const char*> rows[] = {
      {"/a/b/../..//c", "/.//c"}, {"a/../b:c", "./b:c"}, {"a/..//b", ".//b"},
      {"../a/../..", "../../"},   {"a/..", "./"},        {"x:a/../b:c", "x:b:c"},
      {"a/../../..", "../../"},   {"//h//..", "//h/"},   {"/%2e%2E/%41", "/%2e%2E/%41"}};
  for (const auto& [text, result] : rows) EXPECT_EQ(parse(text)->withoutDotSegments(), result);
}

TEST(URIReference, TakesWhatAnotherParserTakes) {
  std::mt19937 random(1);
  constexpr std::string_view pieces[] = {"a", "Z", "1", "80",   ":",   ":",       "/",    "//",
                                         "?", "#", "@", "%41",  "%g",  "..",      "[::1", "]",
                                         "[", "-", " ", "\xE9", "v1.", "https://"};
  for (int i = 0; i < 200'000; ++i) {
    std::string text;
    for (auto left = random() % 8; left > 0; --left) text += pieces[random() % std::size(pieces)];
    const auto ours = parse(text);
    const auto theirs = boost::urls::parse_uri_reference(text);
    // It also takes a path that begins without a slash right behind an authority.
    const std::string path = theirs ? std::string(theirs->encoded_path()) : "";
    const bool isLax = theirs && theirs->has_authority() && !path.empty() && path[0] != '/';
    ASSERT_EQ(ours.has_value(), theirs.has_value() && !isLax) << text;
    if (!ours) continue;
    EXPECT_EQ(ours->scheme.value_or(""), theirs->scheme()) << text;
    EXPECT_EQ(ours->host().value_or(""), theirs->encoded_host()) << text;
    EXPECT_EQ(ours->port().value_or(0), theirs->port_number()) << text;
    EXPECT_EQ(ours->path, path) << text;
  }
}
