#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZDomain/ZDUtils.h"
#include "platform/desktop/IconTheme.h"
#include "tests/ZCommons/System/FakeWorkspace.h"
#include "tests/ZDomain/FakePlaces.h"
#include "tests/platform/desktop/Pictures.h"
#include "tests/support/RecordingLogger.h"

using foundation::URL;
using support::PNG;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

const std::string editor = "org.example.Editor";

/// A desktop where one application may be installed.
struct Desktop : support::FakeWorkspace, platform::IconTheme {
  std::optional<URL> URLForApplicationWithBundleIdentifier(std::string_view identifier) override {
    return identifier == editor ? application : std::nullopt;
  }
  std::optional<URL> URLForIcon(std::string_view name) override {
    return name == "dialog-warning" ? caution : icon;
  }
  std::optional<URL> application, icon, caution;
};

class ZDUtilsTest : public testing::Test {
 protected:
  ZDUtilsTest() {
    desktop.caution = write("caution.png", PNG(2, 2));
    program.executable = path + "program/main";
  }

  URL write(const std::string& name, std::string_view content) {
    support::writeFile(path + name, content);
    return URL::fileURLWithPath(path + name);
  }

  std::optional<platform::Image> install(std::string_view iconFile) {
    desktop.application = write("applications/org.example.Editor.desktop",
                                "[Desktop Entry]\nType=Application\nIcon=edit");
    desktop.icon = write("edit.png", iconFile);
    return ZDUtils::imageFromApplicationAndUpdateCacheForBundleId(editor);
  }

  support::FakeFolders folders;
  const std::string path = folders.folder.path("");
  support::FakeBundle program;
  Desktop desktop;
  const platform::Folders::Replacement foldersReplacement{folders};
  const platform::Bundle::Replacement bundleReplacement{program};
  const platform::Workspace::Replacement workspaceReplacement{desktop};
  const platform::IconTheme::Replacement themeReplacement{desktop};
  const std::shared_ptr<support::RecordingLogger> logger = support::RecordingLogger::add();
  const std::string cacheFolder = path + "user/com.zarvo.Companion/AppIcons";
  const std::string cached = cacheFolder + "/org.example.Editor.icns";
};

}  // namespace

TEST_F(ZDUtilsTest, GoesFromSourceToSource) {
  const auto width = [] { return ZDUtils::imageForBundleId(editor).width; };
  EXPECT_EQ(width(), 2);
  write("program/AppsIcons/org.example.Editor.icns", PNG(4, 4));
  write("Editor.app/Contents/Info.plist",
        "<plist><dict><key>CFBundleIconFile</key><string>App</string></dict></plist>");
  write("Editor.app/Contents/Resources/App.icns", PNG(3, 3));
  desktop.application = URL::fileURLWithPath(path + "Editor.app", URL::Kind::directory);
  EXPECT_EQ(width(), 3);
  desktop.application.reset();
  EXPECT_EQ(width(), 4);
  program.executable.clear();
  EXPECT_EQ(width(), 3);
  support::writeFile(cached, "damaged");
  EXPECT_EQ(width(), 2);
  desktop.caution.reset();
  EXPECT_EQ(width(), 64) << "the picture of the library's own";
}

TEST_F(ZDUtilsTest, KeepsACopyOfTheIconFile) {
  support::writeFile(cached + "/in the way", "");
  for (const std::string& file : {PNG(4, 4), PNG(5, 5), PNG(5, 5)}) {
    EXPECT_TRUE(install(file));
    EXPECT_EQ(foundation::textOf(*platform::FileSystem::readFile(cached)), file);
  }
  EXPECT_FALSE(install("damaged"));
  EXPECT_EQ(foundation::textOf(*platform::FileSystem::readFile(cached)), PNG(5, 5));

  ASSERT_TRUE(platform::FileSystem::removeItem(cacheFolder));
  support::writeFile(cacheFolder, "");
  EXPECT_TRUE(install(PNG(4, 4)));
  EXPECT_THAT(logger->numberedLines(),
              ElementsAre(MatchesRegex("1 87 \\(ZDUtils\\[0x[0-9a-f]+\\] imageFromApplicationAnd"
                                       "UpdateCacheForBundleId:\\) Error updating of cached icon "
                                       "for bundle id org.example.Editor: .*: Not a directory"),
                          MatchesRegex("1 88 Error trace - ZDUtils\\[0x[0-9a-f]+\\]: "
                                       "imageFromApplicationAndUpdateCacheForBundleId:")));
}

TEST_F(ZDUtilsTest, LogsWhereItLooksForTheProductsIcon) {
  program.executable = path + "bin/main";
  const URL icon = write("share/main/AppsIcons/org.example.Editor.icns", PNG(4, 4));
  EXPECT_TRUE(ZDUtils::imageFromProductDirectoryForBundleId(editor));
  EXPECT_FALSE(ZDUtils::imageFromProductDirectoryForBundleId("other"));
  const auto line = [](const std::string& number, const std::string& end) {
    return MatchesRegex("8 " + number +
                        " \\(ZDUtils\\[0x[0-9a-f]+\\] imageFromProductDirectoryForBundleId:\\) "
                        "\\(imageFromProductDirectoryForBundleId\\) Filtering apps " +
                        end);
  };
  EXPECT_THAT(logger->numberedLines(),
              ElementsAre(line("109", "image URL:" + icon.absoluteString()),
                          line("110", "bundle ID:" + editor), line("109", "image URL:\\(null\\)"),
                          line("110", "bundle ID:other")));
}

TEST_F(ZDUtilsTest, StaysInItsFolders) {
  write("user/com.zarvo.Companion/icon.icns", PNG(4, 4));
  for (const std::string_view identifier : {"../icon", ".", "..", ""}) {
    EXPECT_EQ(ZDUtils::imageForBundleId(identifier).width, 2) << identifier;
    EXPECT_FALSE(ZDUtils::cachedAppIconUrlForBundleId(identifier)) << identifier;
  }
  EXPECT_FALSE(ZDUtils::cachedAppIconUrlForBundleId(std::string("icon\0", 5)));
}
