#include <gtest/gtest.h>

#include "platform/desktop/ApplicationBundle.h"
#include "tests/platform/desktop/Pictures.h"
#include "tests/support/TemporaryFolder.h"

TEST(ApplicationBundle, FindsResourcesInItsFolders) {
  const support::TemporaryFolder folder;
  const auto bundleAt = [&](const char* path) {
    return platform::ApplicationBundle::bundleWithURL(
        foundation::URL::fileURLWithPath(folder.path(path)));
  };
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"A.app", "r", "A.app/Contents/Resources/r.icns"},
      {"A.app", "r.png", "A.app/Contents/Resources/r.png"},
      {"A.app", "in/one", "A.app/Contents/Resources/in/one"},
      {"flat", "r", "flat/r.png"},
  };
  for (const auto& [bundle, name, path] : rows) {
    support::writeFile(folder.path(path), "");
    EXPECT_EQ(bundleAt(bundle)->URLForImageResource(name)->path(), folder.path(path));
  }
  support::writeFile(folder.path("A.app/Contents/Info.plist"), "no list");
  EXPECT_TRUE(bundleAt("A.app")->infoDictionary().empty());
  for (const char* name : {"in", "../Info.plist", "/etc/passwd", ""}) {
    EXPECT_FALSE(bundleAt("A.app")->URLForImageResource(name)) << name;
  }
  EXPECT_FALSE(bundleAt("missing"));
  EXPECT_FALSE(bundleAt("flat/r.png"));
}
