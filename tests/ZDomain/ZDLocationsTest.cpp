#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZDomain/ZDLocations.h"
#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "tests/support/RecordingLogger.h"
#include "tests/support/TemporaryFolder.h"

using foundation::Error;
using foundation::NSGenericException;
using foundation::URL;
using platform::SearchPathDirectory;
using platform::SearchPathDomain;
using testing::ElementsAre;
using testing::MatchesRegex;
namespace FileSystem = platform::FileSystem;

namespace {

using Getter = const ZDLocations::Folder& (*)();

/// Standard folders inside a temporary one.
class FakeFolders : public platform::Folders {
 public:
  foundation::Result<URL> url(SearchPathDirectory, SearchPathDomain domain) override {
    if (!available) return Error("test", 1, "no such folder");
    const bool isUser = domain == SearchPathDomain::user;
    return URL::fileURLWithPath(folder.path(isUser ? "user" : "local"), URL::Kind::directory);
  }
  URL temporaryDirectory() override { return URL::fileURLWithPath(folder.path()); }

  const support::TemporaryFolder folder;
  bool available = true;
};

class FakeBundle : public platform::Bundle {
 public:
  const foundation::Dictionary& infoDictionary() override { return information; }
  std::string processName() override { return "test"; }

  foundation::Dictionary information;
};

class ZDLocationsTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return folders.folder.path(name); }

  mode_t permissions(const std::string& name) const {
    return FileSystem::attributes(path(name))->permissions;
  }

  /// The error lines so far, each as its line number, a blank, and its text.
  std::vector<std::string> errors() {
    std::vector<std::string> lines;
    for (const DDLogMessage& message : logger->messages()) {
      EXPECT_EQ(message.logFlag(), DDLogFlag::error);
      lines.push_back(foundation::format("%d %@", message.lineNumber(), message.logMsg()));
    }
    return lines;
  }

  FakeFolders folders;
  const platform::Folders::Replacement replacement{folders};
  const std::shared_ptr<support::RecordingLogger> logger = support::RecordingLogger::add();
};

}  // namespace

TEST_F(ZDLocationsTest, MakesEveryFolderOnce) {
  umask(077);
  const std::pair<Getter, const char*> rows[] = {
      {ZDLocations::zarvoCoreCertCacheDirectory, "local/com.zarvo.Zarvo/ZarvoCore/CertCache"},
      {ZDLocations::sharedZarvoCoreDirectory, "local/com.zarvo.Zarvo/ZarvoCore"},
      {ZDLocations::sharedProductDataDirectory, "local/com.zarvo.Zarvo"},
      {ZDLocations::rootUtilsDirectory, "local/com.zarvo.Zarvo/kext"},
      {ZDLocations::zarvoCoreDirectory, "user/com.zarvo.Zarvo/ZarvoCore"},
      {ZDLocations::appIconsCacheDirectory, "user/com.zarvo.Zarvo/AppIcons"},
      {ZDLocations::productDataDirectory, "user/com.zarvo.Zarvo"},
  };
  for (const auto& [getter, name] : rows) {
    const ZDLocations::Folder& folder = getter();
    EXPECT_EQ(folder, URL::fileURLWithPath(path(name), URL::Kind::directory));
    const bool isOpenToAll = getter == ZDLocations::zarvoCoreCertCacheDirectory;
    EXPECT_EQ(permissions(name), isOpenToAll ? 0777u : 0700u) << name;
    ASSERT_TRUE(FileSystem::removeItem(path(name)));
    EXPECT_EQ(&getter(), &folder);
    EXPECT_FALSE(FileSystem::exists(path(name))) << name;
    ASSERT_TRUE(FileSystem::createDirectory(path(name)));
  }
  EXPECT_THAT(errors(), testing::IsEmpty());
}

TEST_F(ZDLocationsTest, TellsAllThreadsTheSame) {
  std::promise<void> start;
  const std::shared_future<void> started = start.get_future().share();
  std::vector<std::future<const ZDLocations::Folder*>> answers;
  for (int i = 0; i < 8; ++i) {
    answers.push_back(std::async(std::launch::async, [started] {
      started.wait();
      return &ZDLocations::zarvoCoreCertCacheDirectory();
    }));
  }
  start.set_value();
  const ZDLocations::Folder* const first = answers.front().get();
  EXPECT_TRUE(*first);
  for (std::size_t i = 1; i < answers.size(); ++i) EXPECT_EQ(answers[i].get(), first);
}

TEST_F(ZDLocationsTest, NamesTheFoldersByTheBundle) {
  FakeBundle bundle;
  bundle.information["CFBundleIdentifier"] = "com.zarvo.Companion";
  const platform::Bundle::Replacement bundleReplacement(bundle);
  const auto folder = ZDLocations::productDataDirectoryForDomain(SearchPathDomain::local);
  ASSERT_TRUE(folder);
  EXPECT_EQ(folder->lastPathComponent(), "com.zarvo.Companion");
}

TEST_F(ZDLocationsTest, TriesAgainAfterAFailure) {
  struct Row {
    Getter getter;
    const char* blocked;  // where a file stands in the way
    const char* error;
    const char* reason;  // of the exception; null when nothing is raised
  };
  const Row rows[] = {
      {ZDLocations::sharedProductDataDirectory, "local/com.zarvo.Zarvo",
       R"(297 \(ZDLocations\[0x[0-9a-f]+\] productDataDirectoryForDomain:\) Cannot create )"
       "application data directory: .+",
       nullptr},
      {ZDLocations::sharedZarvoCoreDirectory, "local/com.zarvo.Zarvo/ZarvoCore",
       R"(105 \(ZDLocations\[0x[0-9a-f]+\] sharedZarvoCoreDirectory\) Cannot create ZarvoCore )"
       "certificates cache directory: .+",
       nullptr},
      {ZDLocations::zarvoCoreCertCacheDirectory, "local/com.zarvo.Zarvo/ZarvoCore/CertCache",
       R"(143 \(ZDLocations\[0x[0-9a-f]+\] zarvoCoreCertCacheDirectory\) Cannot create ZarvoCore )"
       "certificates cache directory: .+",
       nullptr},
      {ZDLocations::rootUtilsDirectory, "local/com.zarvo.Zarvo/kext",
       R"(257 \(ZDLocations\[0x[0-9a-f]+\] rootUtilsDirectory\) Cannot create root utils )"
       "directory: .+",
       nullptr},
      {ZDLocations::appIconsCacheDirectory, "user/com.zarvo.Zarvo/AppIcons",
       R"(181 \(ZDLocations\[0x[0-9a-f]+\] appIconsCacheDirectory\) Cannot create app icons )"
       "cache directory: .+",
       "Cannot create app icons cache directory: .+"},
      {ZDLocations::zarvoCoreDirectory, "user/com.zarvo.Zarvo/ZarvoCore",
       R"(219 \(ZDLocations\[0x[0-9a-f]+\] zarvoCoreDirectory\) Cannot create zarvoCore )"
       "directory: .+",
       "Cannot create zarvoCore directory: .+"},
  };
  ASSERT_TRUE(FileSystem::createDirectory(path("user/com.zarvo.Zarvo")));
  for (const Row& row : rows) {
    const std::size_t errorsBefore = errors().size();
    const std::string parent = path(row.blocked).substr(0, path(row.blocked).rfind('/'));
    ASSERT_TRUE(FileSystem::createDirectory(parent));
    ASSERT_TRUE(FileSystem::createFile(path(row.blocked)));
    try {
      EXPECT_FALSE(row.getter());
      EXPECT_EQ(row.reason, nullptr);
    } catch (const NSGenericException& exception) {
      ASSERT_NE(row.reason, nullptr) << exception.what();
      EXPECT_THAT(exception.reason(), MatchesRegex(row.reason));
    }
    ASSERT_EQ(errors().size(), errorsBefore + 1);
    EXPECT_THAT(errors().back(), MatchesRegex(row.error));
    ASSERT_TRUE(FileSystem::removeItem(path(row.blocked)));
    EXPECT_TRUE(row.getter()) << row.blocked;
  }
}

TEST_F(ZDLocationsTest, LeavesTheLineToTheParent) {
  ASSERT_TRUE(FileSystem::createDirectory(path("user")));
  ASSERT_TRUE(FileSystem::createDirectory(path("local/com.zarvo.Zarvo")));
  ASSERT_TRUE(FileSystem::createFile(path("user/com.zarvo.Zarvo")));
  ASSERT_TRUE(FileSystem::createFile(path("local/com.zarvo.Zarvo/ZarvoCore")));
  EXPECT_FALSE(ZDLocations::appIconsCacheDirectory());
  EXPECT_FALSE(ZDLocations::zarvoCoreDirectory());
  EXPECT_FALSE(ZDLocations::zarvoCoreCertCacheDirectory());
  EXPECT_THAT(errors(), ElementsAre(testing::StartsWith("297 "), testing::StartsWith("297 "),
                                    testing::StartsWith("105 ")));
}

TEST_F(ZDLocationsTest, RaisesWithoutApplicationSupport) {
  folders.available = false;
  try {
    ZDLocations::sharedZarvoCoreDirectory();
    ADD_FAILURE();
  } catch (const NSGenericException& exception) {
    EXPECT_EQ(exception.reason(), "Cannot create application data directory");
  }
  EXPECT_THAT(errors(), ElementsAre(MatchesRegex(
                            R"(284 \(ZDLocations\[0x[0-9a-f]+\] productDataDirectoryForDomain:\) )"
                            "Cannot create application data directory: no such folder")));
}

namespace {

/// Ends the process with 0 when a thread that asks for an unknown folder waits after an exception.
[[noreturn]] void raiseAndAskFromAnotherThread(FakeFolders& folders) {
  const bool known = ZDLocations::productDataDirectory().has_value();
  folders.available = false;
  bool raised = false;
  try {
    ZDLocations::sharedProductDataDirectory();
  } catch (const NSGenericException&) {
    raised = true;
  }
  folders.available = true;
  std::promise<void> toldTheKnownOne;
  std::promise<void> answered;
  std::thread([&] {
    static_cast<void>(ZDLocations::productDataDirectory());
    toldTheKnownOne.set_value();
    static_cast<void>(ZDLocations::sharedProductDataDirectory());
    answered.set_value();
  }).detach();
  toldTheKnownOne.get_future().wait();
  const bool waits =
      answered.get_future().wait_for(std::chrono::milliseconds(300)) == std::future_status::timeout;
  _exit(known && raised && waits ? 0 : 1);
}

}  // namespace

TEST_F(ZDLocationsTest, LeavesItsLockHeldByAnException) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(raiseAndAskFromAnotherThread(folders), testing::ExitedWithCode(0), "");
}
