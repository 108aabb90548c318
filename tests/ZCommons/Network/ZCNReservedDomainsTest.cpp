#include <gtest/gtest.h>

#include "ZCommons/Network/ZCNReservedDomains.h"
#include "ZCommons/Network/ZCNUrlUtils.h"
#include "foundation/NSException.h"
#include "tests/support/TemporaryFolder.h"

TEST(ZCNReservedDomains, HoldsThePublicSuffixesOfTwoAndThreeLabels) {
  const ZCNReservedDomains& lists = ZCNReservedDomains::singleton();
  // clang-format off
  const std::pair<const char*, int> rows[] = {
      {"co.uk", 2}, {"github.io", 2}, {"公司.cn", 2}, {"xn--55qx5d.cn", 2}, {"kawasaki.jp", 2},
      {"city.kawasaki.jp", 0}, {"k12.ca.us", 3}, {"xn--vler-qoa.hedmark.no", 3},
      {"example.com", 0}, {"com", 0}, {"www.ck", 0}, {"*.ck", 0}};
  // clang-format on
  for (const auto& [name, level] : rows) {
    EXPECT_EQ(lists.isTwoLevel(name) * 2 + lists.isThreeLevel(name) * 3, level) << name;
  }
}

TEST(ZCNReservedDomains, RaisesUntilTheGivenFileCanBeRead) {
  const support::TemporaryFolder folder;
  ZCNReservedDomains::setLocation(folder.path("lists"));
  const auto domainWith = [&](std::string_view lists) {
    const std::string text = "<plist version=\"1.0\"><dict>" + std::string(lists) + "</plist>";
    EXPECT_TRUE(
        platform::FileSystem::writeFileAtomically(folder.path("lists"), foundation::dataOf(text)));
    return ZCNUrlUtils::secondLevelDomainName("w.x.y.z");
  };
  try {
    ZCNReservedDomains::singleton();
    ADD_FAILURE();
  } catch (const foundation::NSInternalInconsistencyException& exception) {
    EXPECT_EQ(exception.reason(),
              "Application resource available error. Attempt load resource with name: "
              "reservedDomains.plist.");
  }
  for (const char* lists : {"", "<key>TWO_LEVEL</key><string>y.z</string></dict>",
                            "<key>THREE_LEVEL</key><array><true/></array></dict>"}) {
    EXPECT_THROW(domainWith(lists), foundation::NSInternalInconsistencyException) << lists;
  }
  EXPECT_EQ(domainWith("<key>TWO_LEVEL</key><array><string>y.z</string></array></dict>"), "x.y.z");
}
