#include <gtest/gtest.h>

#include "ZCommons/Network/ZCNUrlUtils.h"
#include "foundation/NSException.h"

using foundation::URL;
using Text = std::optional<std::string>;
using Texts = std::vector<std::pair<const char*, Text>>;

TEST(ZCNUrlUtils, CutsTheHostOut) {
  // clang-format off
  const Texts rows = {
      {"http://example.com:80/a?b", "example.com"}, {"//h?x//y", "h"}, {"x://h", "h"},
      {"x://", ""}, {"http:///a", ""}, {"http://h#a/b", "h"}, {"http://me@h/", "me@h"},
      {"http://me:pw@h/", "me"}, {"example.com/a", {}}, {"", {}}, {{}, {}}};
  // clang-format on
  for (const auto& [url, host] : rows) EXPECT_EQ(ZCNUrlUtils::host(url), host) << url;
  EXPECT_EQ(ZCNUrlUtils::domainNameFor("http://www.a.b/", true), "a.b");
  EXPECT_EQ(ZCNUrlUtils::domainNameFor("http://WWW.a.b/", true), "WWW.a.b");
}

TEST(ZCNUrlUtils, KnowsThePort) {
  // clang-format off
  const std::pair<const char*, int> rows[] = {
      {"https://a/", 443}, {"HTTPS://a/", 80}, {"https://a:8443/b c", 8443}, {"http://a:0", 80},
      {"https://a:0/", 443}, {"ftp://a", 80}, {"https://u:p@a:1", 1}, {"https://[::1]:2/", 80},
      {"https://a:70000", 443}, {"https://a:x", 80}, {"", 80}, {{}, 80}};
  // clang-format on
  for (const auto& [url, port] : rows) EXPECT_EQ(ZCNUrlUtils::port(url), port) << url;
  EXPECT_EQ(ZCNUrlUtils::portForUrl(URL::URLWithString("https://[::1]:2/")), 2);
}

TEST(ZCNUrlUtils, EscapesAndJoins) {
  EXPECT_EQ(ZCNUrlUtils::percentEncodeUrlParameter("a/b+c=d&e f#\u00E9%"),
            "a%2Fb%2Bc%3Dd%26e%20f%23%C3%A9%25");
  EXPECT_EQ(ZCNUrlUtils::rightUrlEscaping("http://a/b c#d%20"), "http://a/b%20c#d%2520");
  const foundation::Dictionary parameters = {{"a", 1}, {"b c", "&"}};
  EXPECT_EQ(ZCNUrlUtils::createStringFromParameters(parameters, true), "a=1&amp;b c=%26");
  EXPECT_EQ(ZCNUrlUtils::createStringFromParameters(parameters, false), "a=1&b c=%26");
  EXPECT_EQ(ZCNUrlUtils::toPunyCode(" \u00A0\n"), "");
  EXPECT_EQ(ZCNUrlUtils::toPunyCode("b\u00FCcher.de"), "xn--bcher-kva.de");
}

TEST(ZCNUrlUtils, MakesURLs) {
  const auto base = URL::URLWithString("http://h/a/b");
  EXPECT_EQ(ZCNUrlUtils::URLWithString("http://h/\u00E9#f")->absoluteString(), "http://h/%C3%A9#f");
  EXPECT_EQ(ZCNUrlUtils::URLWithString("../c#d", base)->absoluteString(), "http://h/c%23d");
  EXPECT_FALSE(ZCNUrlUtils::URLWithString(nullptr, base) || ZCNUrlUtils::URLWithString("1:2"));
  const auto object = ZCLURL::URLWithString("http://h/a/b");
  EXPECT_EQ(ZCNUrlUtils::absoluteUrlForRelative("../\u00E9", object), "http://h/\u00E9");
}

TEST(ZCNUrlUtils, FindsTheDomainThatItsOwnerRegistered) {
  // clang-format off
  const Texts rows = {
      {{}, {}}, {"", ""}, {"localhost", "localhost"}, {"co.uk", "co.uk"},
      {"a.b.example.com", "example.com"}, {"a.b.example.co.uk", "example.co.uk"},
      {"example.co.uk", "example.co.uk"}, {"a.CO.UK", "CO.UK"}, {"k12.ca.us", "k12.ca.us"},
      {"a.b.k12.ca.us", "b.k12.ca.us"}, {"a.b.s3.amazonaws.com", "b.s3.amazonaws.com"},
      {"a.city.kawasaki.jp", "city.kawasaki.jp"}, {"..x", ".x"}, {"a..co.uk", ".co.uk"}};
  // clang-format on
  const auto domainOf = ZCNUrlUtils::secondLevelDomainName;
  for (const auto& [host, domain] : rows) EXPECT_EQ(domainOf(host), domain) << host;
  EXPECT_THROW(domainOf("s3.amazonaws.com"), foundation::NSRangeException);
}

TEST(ZCNUrlUtils, TellsRequestsOfTheSameSiteFromForeignOnes) {
  // clang-format off
  const std::tuple<const char*, const char*, int> rows[] = {
      {"http://a.example.com/", "https://b.example.com:8/ c", 1},
      {"http://a.github.io/", "http://b.github.io/", 2},
      {"http://a.公司.cn/", "http://b.公司.cn/", 2}, {"http://a.b/", {}, 4}, {"http://a.b/", "", 4},
      {"http://a.b/", "about:blank", 2}, {{}, "http://a.b/", 2}, {"/x", "/x", 2}};
  // clang-format on
  const auto party = ZCNUrlUtils::thirdPartyRequest;
  for (const auto& [request, from, code] : rows) EXPECT_EQ(party(request, from), code) << from;
  EXPECT_THROW(party("http://s3.amazonaws.com/", "http://a.b/"), foundation::NSRangeException);
}
