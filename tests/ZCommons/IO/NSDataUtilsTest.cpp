#include <gtest/gtest.h>

#include "ZCommons/IO/NSDataUtils.h"
#include "foundation/Value.h"

TEST(NSDataUtils, DigestsThePublishedVectors) {
  const auto md5 = NSDataUtils::md5Digest({});
  const auto sha256 = NSDataUtils::sha256Digest(foundation::dataOf("abc"));
  EXPECT_EQ(foundation::Value(foundation::Data(md5.begin(), md5.end())).description(),
            "<d41d8cd98f00b204e9800998ecf8427e>");
  EXPECT_EQ(foundation::Value(foundation::Data(sha256.begin(), sha256.end())).description(),
            "<ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad>");
}
