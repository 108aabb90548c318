#include <gtest/gtest.h>

#include "platform/Bundle.h"

namespace {

using platform::Bundle;

TEST(Bundle, NamesTheExecutableAndSaysWhatItEmbeds) {
  platform::embedInfoDictionary([] {
    return foundation::Dictionary{{"CFBundleIdentifier", "com.example.tests"}, {"Count", 3}};
  });
  EXPECT_EQ(Bundle::production().bundleIdentifier(), "com.example.tests");
  EXPECT_EQ(Bundle::production().infoDictionary().size(), 2u);
  EXPECT_EQ(Bundle::production().processName(), "SystemTests");
}

}  // namespace
