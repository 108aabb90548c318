#include <sys/stat.h>
#include <unistd.h>

#include <future>
#include <latch>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZDomain/ZDLocations.h"
#include "foundation/NSException.h"
#include "platform/FileSystem.h"
#include "tests/ZDomain/FakePlaces.h"
#include "tests/support/RecordingLogger.h"

using foundation::NSGenericException;
using foundation::URL;
using platform::SearchPathDomain;
using support::FakeBundle;
using support::FakeFolders;
using testing::StartsWith;
namespace FileSystem = platform::FileSystem;

namespace {

class ZDLocationsTest : public testing::Test {
 protected:
  /// The lines so far, as "<flag> <number> <operation> <text>" without the class.
  std::vector<std::string> errors() const {
    std::vector<std::string> lines = logger->numberedLines();
    for (std::string& line : lines) {
      const std::size_t prefix = line.find("(ZDLocations[0x");
      const std::size_t operation = line.find("] ", prefix) + 2;
      line.erase(line.find(')', operation), 1);
      line.erase(prefix, operation - prefix);
    }
    return lines;
  }

  FakeFolders folders;
  const platform::Folders::Replacement replacement{folders};
  const std::shared_ptr<support::RecordingLogger> logger = support::RecordingLogger::add();
};

const std::string noProductFolder =
    "1 297 productDataDirectoryForDomain: Cannot create application data directory: ";

}  // namespace

TEST_F(ZDLocationsTest, TriesAgainAfterAFailureAndNeverAfterASuccess) {
  struct Row {
    const ZDLocations::Folder& (*getter)();
    std::string name;
    std::string error;  // where a file stands in the way
    bool raises = false;
    mode_t permissions = 0700;
  };
  const Row rows[] = {
      {ZDLocations::sharedProductDataDirectory, "local/com.zarvo.Companion", noProductFolder},
      {ZDLocations::productDataDirectory, "user/com.zarvo.Companion", noProductFolder},
      {ZDLocations::sharedZarvoCoreDirectory, "local/com.zarvo.Companion/ZarvoCore",
       "1 105 sharedZarvoCoreDirectory Cannot create ZarvoCore certificates cache directory: "},
      {ZDLocations::zarvoCoreCertCacheDirectory, "local/com.zarvo.Companion/ZarvoCore/CertCache",
       "1 143 zarvoCoreCertCacheDirectory Cannot create ZarvoCore certificates cache directory: ",
       false, 0777},
      {ZDLocations::rootUtilsDirectory, "local/com.zarvo.Companion/kext",
       "1 257 rootUtilsDirectory Cannot create root utils directory: "},
      {ZDLocations::appIconsCacheDirectory, "user/com.zarvo.Companion/AppIcons",
       "1 181 appIconsCacheDirectory Cannot create app icons cache directory: ", true},
      {ZDLocations::zarvoCoreDirectory, "user/com.zarvo.Companion/ZarvoCore",
       "1 219 zarvoCoreDirectory Cannot create zarvoCore directory: ", true},
  };
  FakeBundle bundle;
  const platform::Bundle::Replacement bundleReplacement(bundle);
  umask(077);
  for (const Row& row : rows) {
    const std::string path = folders.folder.path(row.name);
    ASSERT_TRUE(FileSystem::createDirectory(path.substr(0, path.rfind('/'))));
    ASSERT_TRUE(FileSystem::createFile(path));
    try {
      EXPECT_FALSE(row.getter());
      EXPECT_FALSE(row.raises) << row.name;
    } catch (const NSGenericException& exception) {
      EXPECT_TRUE(row.raises) << row.name;
      EXPECT_THAT(errors().back(), testing::EndsWith("Directory " + exception.reason()));
    }
    EXPECT_THAT(errors().back(), StartsWith(row.error));
    ASSERT_TRUE(FileSystem::removeItem(path));
    EXPECT_EQ(row.getter(), URL::fileURLWithPath(path, URL::Kind::directory));
    EXPECT_EQ(FileSystem::attributes(path)->permissions, row.permissions) << row.name;
    ASSERT_TRUE(FileSystem::removeItem(path));
    EXPECT_TRUE(row.getter()) << row.name;
    EXPECT_FALSE(FileSystem::exists(path)) << row.name;
  }
  EXPECT_EQ(errors().size(), std::size(rows));
}

TEST_F(ZDLocationsTest, LeavesTheLineToTheParent) {
  ASSERT_TRUE(FileSystem::createDirectory(folders.folder.path("local")));
  ASSERT_TRUE(FileSystem::createFile(folders.folder.path("local/com.zarvo.Zarvo")));
  EXPECT_FALSE(ZDLocations::zarvoCoreCertCacheDirectory());
  folders.available = false;
  EXPECT_THAT([] { ZDLocations::zarvoCoreCertCacheDirectory(); },
              testing::ThrowsMessage<NSGenericException>(
                  testing::StrEq("Cannot create application data directory")));
  EXPECT_THAT(errors(), testing::ElementsAre(
                            StartsWith(noProductFolder),
                            "1 284 productDataDirectoryForDomain: Cannot create application data "
                            "directory: no such folder"));
}

TEST_F(ZDLocationsTest, TellsAllThreadsTheSame) {
  std::latch start(8);
  std::vector<std::future<const ZDLocations::Folder*>> answers(8);
  for (auto& answer : answers) {
    answer = std::async(std::launch::async, [&start] {
      start.arrive_and_wait();
      return &ZDLocations::zarvoCoreCertCacheDirectory();
    });
  }
  const ZDLocations::Folder* const first = answers.front().get();
  EXPECT_TRUE(*first);
  for (std::size_t i = 1; i < answers.size(); ++i) EXPECT_EQ(answers[i].get(), first);
}

TEST_F(ZDLocationsTest, LeavesItsLockHeldByAnException) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // Ends with 0 when other threads are told a known folder, and wait for an unknown one.
  const auto raiseAndAskFromOtherThreads = [this] {
    ZDLocations::productDataDirectory();
    folders.available = false;
    EXPECT_THROW(ZDLocations::sharedProductDataDirectory(), NSGenericException);
    folders.available = true;
    auto known = std::async(std::launch::async, ZDLocations::productDataDirectory);
    auto unknown = std::async(std::launch::async, ZDLocations::sharedProductDataDirectory);
    const bool tellsKnown = known.get().has_value();
    const auto waiting = unknown.wait_for(std::chrono::milliseconds(300));
    _exit(tellsKnown && waiting == std::future_status::timeout ? 0 : 1);
  };
  EXPECT_EXIT(raiseAndAskFromOtherThreads(), testing::ExitedWithCode(0), "");
}
