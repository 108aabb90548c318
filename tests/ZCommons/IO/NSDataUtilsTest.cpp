#include <gtest/gtest.h>

#include "ZCommons/IO/NSDataUtils.h"
#include "foundation/Value.h"

namespace {

std::string hexadecimal(foundation::DataView data) {
  return foundation::Value(foundation::Data(data.begin(), data.end())).description();
}

}  // namespace

TEST(NSDataUtils, DigestsThePublishedVectors) {
  struct Row {
    const char* text;
    const char* md5;
    const char* sha256;
  };
  const Row rows[] = {
      {"", "<d41d8cd98f00b204e9800998ecf8427e>",
       "<e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855>"},
      {"abc", "<900150983cd24fb0d6963f7d28e17f72>",
       "<ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad>"},
  };
  for (const Row& row : rows) {
    const foundation::DataView data = foundation::dataOf(row.text);
    EXPECT_EQ(hexadecimal(NSDataUtils::md5Digest(data)), row.md5);
    EXPECT_EQ(hexadecimal(NSDataUtils::sha256Digest(data)), row.sha256);
  }
}
