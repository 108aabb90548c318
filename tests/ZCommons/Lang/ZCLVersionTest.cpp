#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include "ZCommons/Lang/ZCLVersion.h"
#include "foundation/NSException.h"

TEST(ZCLVersion, ParsesOneToFourNumbers) {
  struct Row {
    const char* text;
    std::vector<std::int64_t> numbers;
  };
  const Row rows[] = {
      {"7", {7, 0, 0, 0}},       {"2.1", {2, 1, 0, 0}},
      {"1.2.3.4", {1, 2, 3, 4}}, {" 10b2.x.3rc.", {10, 0, 3, 0}},
      {"-1.+2", {-1, 2, 0, 0}},  {"1.99999999999999999999", {1, INT64_MAX, 0, 0}},
  };
  for (const Row& row : rows) {
    const ZCLVersion version(row.text);
    const std::vector<std::int64_t> numbers = {version.major(), version.minor(), version.build(),
                                               version.revision()};
    EXPECT_EQ(numbers, row.numbers) << row.text;
    EXPECT_EQ(version.description(), row.text);
  }
}

TEST(ZCLVersion, RaisesForWhatIsNone) {
  const foundation::NullableText texts[] = {nullptr, "",  "a.b",       "0.1",   ".1",
                                            ".",     "-", "1.2.3.4.5", "1....", "1.2.3.4."};
  for (const foundation::NullableText text : texts) {
    try {
      ZCLVersion version(text);
      ADD_FAILURE() << text.view();
    } catch (const foundation::NSInvalidArgumentException& exception) {
      EXPECT_EQ(exception.reason(), "Method argument error: versionString");
    }
  }
}

TEST(ZCLVersion, EqualsByItsText) {
  const std::unordered_set<ZCLVersion> versions = {ZCLVersion("2.1"), ZCLVersion("2.1"),
                                                   ZCLVersion("2.1.0")};
  EXPECT_EQ(versions.size(), 2u);
  EXPECT_NE(ZCLVersion("1.0"), ZCLVersion("1.0.0"));
  EXPECT_FALSE(ZCLVersion("1.0") == foundation::Object());
}
