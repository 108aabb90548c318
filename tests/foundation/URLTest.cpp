#include <gtest/gtest.h>

#include "foundation/URL.h"

using foundation::URL;

TEST(URL, KnowsThePathAndTheTextOfFiles) {
  const URL folder = URL::fileURLWithPath("/var/log", URL::Kind::directory);
  const std::tuple<URL, const char*, const char*, const char*> rows[] = {
      {URL::fileURLWithPath("/a/b"), "file:///a/b", "/a/b", "b"},
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

TEST(URL, ReadsTexts) {
  EXPECT_EQ(URL::URLWithString("FILE://localhost/a%2Fb?q#f"), URL::fileURLWithPath("/a/b"));
  for (const char* text : {"http://example.com/a%20b", "file://host/a", "mailto:a@b"}) {
    const auto url = URL::URLWithString(text);
    ASSERT_TRUE(url) << text;
    EXPECT_FALSE(url->isFileURL()) << text;
    EXPECT_EQ(url->description(), text);
    EXPECT_EQ(url->path(), "");
    EXPECT_EQ(url->URLByAppendingPathComponent("x"), *url);
  }
  for (const char* text :
       {"", "/a", "1http://x", ":x", "file:///%", "file:///%2", "file:///%zz", "file:///%00"}) {
    EXPECT_FALSE(URL::URLWithString(text)) << text;
  }
}
