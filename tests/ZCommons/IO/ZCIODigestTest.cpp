#include <string>

#include <gtest/gtest.h>

#include "ZCommons/IO/ZCIODigest.h"

using foundation::dataOf;

TEST(ZCIODigest, OfPiecesIsThatOfTheWhole) {
  const std::string text(1000, 'x');
  for (const auto algorithm : {ZCIODigest::Algorithm::MD5, ZCIODigest::Algorithm::SHA256}) {
    ZCIODigest digest(algorithm);
    for (std::size_t start = 0; start < text.size(); start += 7) {
      digest.update(dataOf(text).subspan(start, std::min<std::size_t>(7, text.size() - start)));
    }
    const foundation::Data whole = digest.finish();
    foundation::Data expected(whole.size());
    ZCIODigest::compute(algorithm, dataOf(text), expected);
    EXPECT_EQ(whole, expected);
  }
}
