#include <unordered_set>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZCommons/Lang/ZCLVersion.h"
#include "foundation/NSException.h"

TEST(ZCLVersion, ParsesOneToFourNumbers) {
  const std::pair<const char*, std::vector<std::int64_t>> rows[] = {
      {"7", {7, 0, 0, 0}},       {"2.1", {2, 1, 0, 0}},
      {"1.2.3.4", {1, 2, 3, 4}}, {" 10b2.x.3rc.", {10, 0, 3, 0}},
      {"-1.+2", {-1, 2, 0, 0}},  {"1.99999999999999999999", {1, INT64_MAX, 0, 0}},
  };
  for (const auto& [text, numbers] : rows) {
    const ZCLVersion version(text);
    EXPECT_THAT(numbers, testing::ElementsAre(version.major(), version.minor(), version.build(),
                                              version.revision()))
        << text;
    EXPECT_EQ(version.description(), text);
  }
}

TEST(ZCLVersion, RaisesForWhatIsNone) {
  const foundation::NullableText texts[] = {nullptr, "",  "a.b",       "0.1",   ".1",
                                            ".",     "-", "1.2.3.4.5", "1....", "1.2.3.4."};
  for (const foundation::NullableText text : texts) {
    EXPECT_THAT([&] { ZCLVersion version(text); },
                testing::ThrowsMessage<foundation::NSInvalidArgumentException>(
                    "Method argument error: versionString"))
        << text.view();
  }
}

TEST(ZCLVersion, EqualsByItsText) {
  const std::unordered_set<ZCLVersion> versions = {ZCLVersion("2.1"), ZCLVersion("2.1"),
                                                   ZCLVersion("2.1.0")};
  EXPECT_EQ(versions.size(), 2u);
  EXPECT_FALSE(ZCLVersion("1.0") == foundation::Object());
}
