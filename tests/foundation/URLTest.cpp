#include <gtest/gtest.h>

#include "foundation/URL.h"

using foundation::URL;

TEST(URL, KnowsThePathAndTheTextOfFiles) {
  struct Row {
    URL url;
    const char* text;
    const char* path;
    const char* last;
  };
  const URL folder = URL::fileURLWithPath("/var/log", URL::Kind::directory);
  const Row rows[] = {
      {URL::fileURLWithPath("/a/b"), "file:///a/b", "/a/b", "b"},
      {URL::fileURLWithPath("/a/"), "file:///a/", "/a", "a"},
      {URL::fileURLWithPath("a"), "file:///a", "/a", "a"},
      {URL::fileURLWithPath("/"), "file:///", "/", "/"},
      {URL::fileURLWithPath("/a b%;?#\u00E4"), "file:///a%20b%25%3B%3F%23%C3%A4", "/a b%;?#\u00E4",
       "a b%;?#\u00E4"},
      {URL::fileURLWithPath("/\xFF"), "file:///%FF", "/\xFF", "\xFF"},
      {folder, "file:///var/log/", "/var/log", "log"},
      {folder.URLByAppendingPathComponent("x y"), "file:///var/log/x%20y", "/var/log/x y", "x y"},
      {URL::fileURLWithPath("/v").URLByAppendingPathComponent("d", URL::Kind::directory),
       "file:///v/d/", "/v/d", "d"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.url.absoluteString(), row.text);
    EXPECT_EQ(row.url.path(), row.path);
    EXPECT_EQ(row.url.lastPathComponent(), row.last);
    EXPECT_EQ(URL::URLWithString(row.text), row.url) << row.text;
  }
  EXPECT_TRUE(folder.hasDirectoryPath());
  EXPECT_FALSE(URL::fileURLWithPath("/var/log").hasDirectoryPath());
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
