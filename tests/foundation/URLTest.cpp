#include <gtest/gtest.h>

#include "foundation/URL.h"

using foundation::URL;

TEST(URL, KnowsThePathAndTheTextOfFiles) {
  const URL folder = URL::fileURLWithPath("/var/log", URL::Kind::directory);
  const std::tuple<URL, const char*, const char*, const char*> rows[] = {
      {URL::fileURLWithPath("/a/"), "file:///a/", "/a", "a"},
      {URL::fileURLWithPath("a"), "file:///a", "/a", "a"},
      {URL::fileURLWithPath("/"), "file:///", "/", "/"},
      {URL::fileURLWithPath("/ %;?#"), "file:///%20%25%3B%3F%23", "/ %;?#", " %;?#"},
      {URL::fileURLWithPath("/\u00E4\xFF"), "file:///%C3%A4%FF", "/\u00E4\xFF", "\u00E4\xFF"},
      {folder.URLByAppendingPathComponent("x y"), "file:///var/log/x%20y", "/var/log/x y", "x y"},
      {folder.URLByAppendingPathComponent("d", URL::Kind::directory), "file:///var/log/d/",
       "/var/log/d", "d"},
  };
  for (const auto& [url, text, path, last] : rows) {
    EXPECT_EQ(url.absoluteString(), text);
    EXPECT_EQ(url.path(), path);
    EXPECT_EQ(url.lastPathComponent(), last);
    EXPECT_EQ(URL::URLWithString(text), url) << text;
  }
  EXPECT_TRUE(folder.hasDirectoryPath());
}

TEST(URL, KeepsTheTextItWasMadeFrom) {
  const auto file = URL::URLWithString("FILE://localhost/a%2Fb?q#f");
  EXPECT_EQ(file->absoluteString(), "FILE://localhost/a%2Fb?q#f");
  EXPECT_EQ(file->path(), "/a/b");
  for (const char* text : {"", "/a", "http://example.com/a%20b", "file://host/a", "mailto:a@b"}) {
    const auto url = URL::URLWithString(text);
    ASSERT_TRUE(url) << text;
    EXPECT_FALSE(url->isFileURL()) << text;
    EXPECT_EQ(url->description(), text);
    EXPECT_EQ(url->path(), "");
    EXPECT_EQ(url->URLByAppendingPathComponent("x"), *url);
  }
  for (const char* text : {"1http://x", ":x", "file:///%", "file:///%2", "file:///%zz",
                           "file:///%00", "http://a b", "http://[::1", "http://a:b", "#a#b"}) {
    EXPECT_FALSE(URL::URLWithString(text)) << text;
  }
}

TEST(URL, KnowsSchemeHostAndPort) {
  using Text = std::optional<std::string>;
  // clang-format off
  const std::tuple<const char*, Text, Text, std::optional<std::uint16_t>> rows[] = {
      {"HTTP://me:pw@Example.com:8080/", "HTTP", "Example.com", 8080},
      {"http://[2001:db8::1]:081", "http", "2001:db8::1", 81},
      {"http://b%C3%BCcher/", "http", "b\u00FCcher", {}}, {"http://%FF/", "http", {}, {}},
      {"http://a:0", "http", "a", {}}, {"http://a:65536", "http", "a", {}},
      {"http://:80/", "http", {}, 80}, {"file:///a", "file", {}, {}},
      {"FILE:///a", "FILE", {}, {}}, {"//a:1", {}, "a", 1}, {"a/b:1", {}, {}, {}}};
  // clang-format on
  for (const auto& [text, scheme, host, port] : rows) {
    const auto url = URL::URLWithString(text);
    EXPECT_EQ(std::tuple(url->scheme(), url->host(), url->port()), std::tuple(scheme, host, port));
  }
}

TEST(URL, ResolvesAgainstABase) {
  const URL folder = URL::fileURLWithPath("/a/b", URL::Kind::directory);
  EXPECT_EQ(URL::URLWithString("../c%20d", folder), URL::fileURLWithPath("/a/c d"));
  EXPECT_FALSE(URL::URLWithString("c d", folder));
  EXPECT_EQ(URL::fileURLWithPath("/a/./../b c").standardizedURL(), URL::fileURLWithPath("/b c"));
}
