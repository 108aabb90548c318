#include <gtest/gtest.h>

#include "platform/desktop/linux/ThemedIcons.h"
#include "tests/platform/desktop/Pictures.h"
#include "tests/support/TemporaryFolder.h"

TEST(IconTheme, FindsTheLargestPictureOfTheBestTheme) {
  const support::TemporaryFolder folder;
  const std::pair<const char*, std::string_view> files[] = {
      {"own/modern/index.theme",
       "Directories=up\n[Icon Theme]\nInherits=classic , "
       "../evil,\nDirectories=16/apps,big,0,../up\n"
       "ScaledDirectories=32@2\n[16/apps]\nSize=16\n[big]\nSize=48\n[32@2]\nSize=32\nScale=2\n"
       "[../up]\nSize=512\n[0]\nSize=0\n"},
      {"system/classic/index.theme",
       "[Icon Theme]\nInherits=modern,hicolor\nDirectories=48\n[48]\nSize=48\n"},
      {"system/hicolor/index.theme", "[Icon Theme]\nDirectories=256\n[256]\nSize=256\n"},
  };
  for (const auto& [path, text] : files) support::writeFile(folder.path(path), text);
  const std::pair<std::string, std::string> rows[] = {
      {"a", "own/modern/big/a.png"},         // larger, and of a better theme than classic
      {"b", "own/modern/32@2/b.png"},        // 64 pixels by its scale
      {"m", "system/modern/16/apps/m.png"},  // of a theme spread over folders
      {"c", "system/classic/48/c.png"},      // inherited, though hicolor's is larger
      {"h", "system/hicolor/256/h.png"},     // of the last theme
      {"x", "own/x.png"},                    // outside themes
      {"org.example.App.png", "pixmaps/org.example.App.png"},
      {folder.path("pixmaps/v.svg"), "pixmaps/v.svg"},
  };
  for (const auto& [name, path] : rows) support::writeFile(folder.path(path), "");
  for (const char* other : {"own/modern/16/apps/a.png", "system/modern/big/b.png", "own/up/u.png",
                            "system/classic/48/a.png", "system/hicolor/256/c.png", "own/0/z.png"}) {
    support::writeFile(folder.path(other), "");
  }
  const std::string own = folder.path("own"), system = folder.path("system");
  platform::ThemedIcons theme({{own, system}, {folder.path("pixmaps")}, {"missing", "modern"}});
  for (const auto& [name, path] : rows) {
    EXPECT_EQ(theme.URLForIcon(name)->path(), folder.path(path)) << name;
  }
  for (const char* name : {"v", "u", "z", "../x", "/usr", "/none", ""})
    EXPECT_FALSE(theme.URLForIcon(name)) << name;
}
