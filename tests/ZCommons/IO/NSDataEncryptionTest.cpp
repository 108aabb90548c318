#include <gtest/gtest.h>
#include <openssl/err.h>

#include "ZCommons/IO/NSDataEncryption.h"
#include "ZCommons/IO/NSDataUtils.h"

TEST(NSDataEncryption, IsAesWithThePaddedKeyAsItsVector) {
  const foundation::DataView text = foundation::dataOf("exactly 16 bytes");
  const auto encrypted = NSDataEncryption::AES128EncryptWithKey(text, "01234");
  EXPECT_EQ(NSDataUtils::base64Encoded(*encrypted), "ruBQoDW/SJflHf6uxi1+UK0MaCrt8t2PUTZZ4k86OLY=");
  EXPECT_FALSE(NSDataEncryption::AES128DecryptWithKey(*encrypted, nullptr));
  EXPECT_EQ(ERR_peek_error(), 0u);
  const auto empty = NSDataEncryption::AES128EncryptWithData({}, foundation::Data(20, 0));
  EXPECT_EQ(NSDataEncryption::AES128DecryptWithKey(*empty, nullptr), foundation::Data());
}
