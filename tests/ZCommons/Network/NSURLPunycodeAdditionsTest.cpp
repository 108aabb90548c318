#include <gtest/gtest.h>

#include "ZCommons/Network/NSURLPunycodeAdditions.h"

TEST(NSURLPunycodeAdditions, MakesAndPrintsInternationalURLs) {
  const auto url = NSURLPunycodeAdditions::URLWithUnicodeString("http://b\u00FCcher.example/a b");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->absoluteString(), "http://xn--bcher-kva.example/a%20b");
  EXPECT_EQ(NSURLPunycodeAdditions::decodedURLString(*url), "http://b\u00FCcher.example/a b");
  EXPECT_FALSE(NSURLPunycodeAdditions::URLWithUnicodeString("http://h/#%"));
}
