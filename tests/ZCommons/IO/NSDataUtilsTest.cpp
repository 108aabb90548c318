#include <gtest/gtest.h>

#include "ZCommons/IO/NSDataEncryption.h"
#include "ZCommons/IO/NSDataUtils.h"
#include "foundation/NSException.h"

using foundation::Data;
using foundation::dataOf;
using foundation::StringEncoding;

// 992 bytes that gzip stores as they are, behind 15 bytes of headers.
const Data noise = *NSDataEncryption::AES128EncryptWithKey(Data(980, 0), "key");

TEST(NSDataUtils, DigestsThePublishedVectors) {
  EXPECT_EQ(NSDataUtils::base64Encoded(NSDataUtils::md5Digest({})), "1B2M2Y8AsgTpgAmY7PhCfg==");
  EXPECT_EQ(NSDataUtils::base64Encoded(NSDataUtils::sha256Digest(dataOf("abc"))),
            "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
}

TEST(NSDataUtils, LooksAtBytes) {
  const std::string cut = std::string(254, 'x') + "\u00E4";
  EXPECT_EQ(NSDataUtils::toString(dataOf(cut), StringEncoding::UTF8), std::nullopt);
  EXPECT_EQ(NSDataUtils::toString(dataOf(cut), StringEncoding::ISOLatin1)->size(), 256u);
  EXPECT_EQ(NSDataUtils::toString(Data{'a', 0, 'b'}, StringEncoding::ASCII), "a");
  EXPECT_THROW(NSDataUtils::byteAtIndex(dataOf("abca"), 4), foundation::NSRangeException);
  EXPECT_EQ(NSDataUtils::indexOfByte(dataOf("abca"), 'a', 4), NSDataUtils::notFound);
}

TEST(NSDataUtils, BringsDataBackFromBase64) {
  const std::array<const char*, 2> rows[] = {
      {"Z\r\nm9v Y-m_Fy\n", "foobar"}, {"Zg==Zm9v", "f"}, {"Z=m9v", ""}, {"\xFFZm9vYmE", "fooba"}};
  for (const auto [text, data] : rows) {
    EXPECT_EQ(foundation::textOf(NSDataUtils::base64Decoded(dataOf(text))), data);
  }
  for (std::size_t length = 0; length < noise.size(); ++length) {
    const Data data(noise.data(), noise.data() + length);
    EXPECT_EQ(NSDataUtils::base64Decoded(dataOf(NSDataUtils::base64Encoded(data))), data);
  }
}

TEST(NSDataUtils, BringsDataBackFromGzip) {
  for (const Data& data : {noise, Data(5000000, 'a'), Data(1, 'a')}) {
    Data compressed = *NSDataUtils::compressGzip(data);
    EXPECT_EQ(NSDataUtils::compressGzip(compressed), compressed);
    compressed.resize(compressed.size() + 3000, 0xFF);  // states a false length
    EXPECT_EQ(NSDataUtils::uncompressGzip(compressed), data);
    EXPECT_LE(NSDataUtils::uncompressGzip(compressed)->capacity(), 2 * data.size() + 1);
    EXPECT_EQ(NSDataUtils::uncompressGzip(data), data);
  }
}

TEST(NSDataUtils, FillsUpWhatDamagedGzipGives) {
  const Data compressed = *NSDataUtils::compressGzip(noise);
  using Row = std::array<std::size_t, 3>;
  for (const auto [cut, content, size] : {Row{2, 0, 1}, Row{30, 15, 30}, Row{1014, 992, 1014}}) {
    Data expected(noise.data(), noise.data() + content);
    expected.resize(size, 0);
    EXPECT_EQ(NSDataUtils::uncompressGzip({compressed.data(), cut}), expected) << cut;
  }
}
