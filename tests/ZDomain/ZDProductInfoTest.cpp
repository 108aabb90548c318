#include <sys/utsname.h>

#include <cstdio>

#include <gtest/gtest.h>

#include "ZDomain/ZDProductInfo.h"
#include "foundation/Format.h"
#include "tests/ZDomain/FakePlaces.h"

namespace {

struct Product {
  foundation::Value version, build, channel;  // null: as if not in the list
  std::string toldVersion, toldChannel, fullVersion;
  std::int64_t buildNumber = 0;
};

// What is told is told for the life of the process, so each product is a case.
class ZDProductInfoTest : public testing::TestWithParam<Product> {};

INSTANTIATE_TEST_SUITE_P(
    , ZDProductInfoTest,
    testing::Values(Product{{}, {}, {}, "1.0", "", "1.0"},
                    Product{foundation::Array(), 300, {}, "300", "", "300", 300},
                    Product{"2.1", {}, "Beta", "2.1", "Beta", "2.1 Beta"},
                    Product{"2.1", "300", "beta", "2.1", "beta", "2.1.300 beta", 300},
                    Product{{}, {}, " \t\u00a0\n", "1.0", " \t\u00a0\n", "1.0"},
                    Product{"", "-7b", {}, "", "", ".-7b", -7}));

void PrintTo(const Product& product, std::ostream* stream) { *stream << product.fullVersion; }

}  // namespace

TEST_P(ZDProductInfoTest, TellsTheProduct) {
  const Product& product = GetParam();
  support::FakeBundle bundle;
  const platform::Bundle::Replacement replacement(bundle);
  bundle.information = {{"ZVVersion", product.version},
                        {"CFBundleVersion", product.build},
                        {"ZVChannel", product.channel}};
  EXPECT_EQ(ZDProductInfo::version(), product.toldVersion);
  EXPECT_EQ(ZDProductInfo::channel(), product.toldChannel);
  EXPECT_EQ(ZDProductInfo::isBetaVersion(), product.toldChannel == "beta");
  EXPECT_EQ(ZDProductInfo::devBuildNumber(), std::to_string(product.buildNumber));
  EXPECT_EQ(ZDProductInfo::fullVersion(), product.fullVersion);
  EXPECT_EQ(ZDProductInfo::name(), "Zarvo");

  utsname names;
  ASSERT_EQ(uname(&names), 0);
  long numbers[3]{};
  std::sscanf(names.release, "%ld.%ld.%ld", &numbers[0], &numbers[1], &numbers[2]);
  EXPECT_EQ(ZDProductInfo::userAgentString(),
            foundation::format("Zarvo/%@ (Macintosh; Intel Mac OS X %ld_%ld_%ld)",
                               product.fullVersion, numbers[0], numbers[1], numbers[2]));

  bundle.information = {{"CFBundleName", "Other"}, {"CFBundleVersion", "99999999999999999999"}};
  EXPECT_EQ(ZDProductInfo::name(), "Zarvo");
  EXPECT_EQ(ZDProductInfo::buildNumber(), INT64_MAX);
}
