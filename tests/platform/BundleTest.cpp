#include <gtest/gtest.h>

#include "platform/Bundle.h"

namespace {

using platform::Bundle;

const bool embedded = [] {
  platform::embedInfoDictionary({{"CFBundleIdentifier", "com.example.tests"}, {"Count", 3}});
  return true;
}();

TEST(Bundle, SaysWhatTheProgramEmbeds) {
  ASSERT_TRUE(embedded);
  EXPECT_EQ(Bundle::production().bundleIdentifier(), "com.example.tests");
  EXPECT_EQ(Bundle::production().infoDictionary().size(), 2u);
}

TEST(Bundle, NamesTheExecutable) { EXPECT_EQ(Bundle::production().processName(), "SystemTests"); }

}  // namespace
