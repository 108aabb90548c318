#include <gtest/gtest.h>

#include "ZCommons/Network/ZCLURL.h"

TEST(ZCLURL, ShowsItselfWithoutEscapesAndDots) {
  const auto url = ZCLURL::URLWithString("HTTP://b\u00FCcher:80/a/../b c#f");
  EXPECT_EQ(url->nsUrl()->absoluteString(), "HTTP://b%C3%BCcher:80/b%20c#f");
  EXPECT_EQ(url->description(), "HTTP://b\u00FCcher:80/b c#f");
  EXPECT_EQ(url->scheme(), "HTTP");
  EXPECT_EQ(url->host(), "b\u00FCcher");
  const auto relative = ZCLURL::URLWithString("../x/./y", url);
  EXPECT_EQ(relative->absoluteString(), "HTTP://b\u00FCcher:80/x/y");
  EXPECT_EQ(*relative, *ZCLURL::URLWithString("HTTP://b\u00FCcher:80/x/y"));
  EXPECT_NE(*relative, *ZCLURL::URLWithString("http://b\u00FCcher:80/x/y"));
  EXPECT_EQ(ZCLURL::URLWithString("x/../y", std::nullopt)->absoluteString(), "y");
}

TEST(ZCLURL, HoldsNullsForATextThatIsNoURL) {
  EXPECT_FALSE(ZCLURL::URLWithString("", ZCLURL::URLWithString("x:")));
  const auto none = ZCLURL::URLWithString("1:2");
  EXPECT_FALSE(none->nsUrl() || none->absoluteString() || none->scheme() || none->host());
  EXPECT_EQ(ZCLURL::URLWithString("a", none)->absoluteString(), "a");
  const auto bytes = ZCLURL::URLWithString("http://h/\xFF");
  EXPECT_TRUE(bytes->nsUrl() && !bytes->absoluteString());
}
