#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>

#include <gmock/gmock.h>

#include "logging/DDLogFileInfo.h"
#include "logging/DDLogFileName.h"
#include "platform/Clock.h"
#include "tests/support/RecordingConsole.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
namespace FileSystem = platform::FileSystem;

std::string makeFile(const support::TemporaryFolder& folder, std::string_view name,
                     std::string_view content = "") {
  const std::string path = folder.path(name);
  EXPECT_TRUE(FileSystem::writeFileAtomically(path, foundation::dataOf(content)));
  return path;
}

// A private mount of a file system without extended attributes.
void mountWithoutAttributes(const std::string& path) {
  const uid_t user = geteuid();
  ASSERT_EQ(unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER), 0);
  if (user != 0) std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
  ASSERT_EQ(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
  ASSERT_EQ(mount("none", path.c_str(), "ramfs", 0, nullptr), 0);
}

// The flag goes up, down, and up again, and stays with the file when it is renamed.
TEST(DDLogFileInfo, KeepsTheArchivedFlagWithAndWithoutAttributes) {
  for (const bool hasAttributes : {true, false}) {
    const support::TemporaryFolder folder;
    if (!hasAttributes) mountWithoutAttributes(folder.path());
    const support::RecordingConsole console;
    DDLogFileInfo info(makeFile(folder, "a.log"));
    for (const bool archived : {false, true, true, false, false, true}) {
      info.setIsArchived(archived);
      EXPECT_EQ(info.isArchived(), archived) << hasAttributes;
    }
    info.renameFile("b.log");
    EXPECT_EQ(info.filePath(), folder.path("b.log"));
    EXPECT_TRUE(info.isArchived()) << hasAttributes;
    EXPECT_EQ(info.hasExtendedAttributeWithName("quillwort.log.archived"), hasAttributes);
    EXPECT_THAT(console.lines(), ElementsAre());
    if (!hasAttributes) umount(folder.path().c_str());
  }
}

TEST(DDLogFileInfo, TakesTheCreationDateFromTheNameWhereThereIsNone) {
  const support::TemporaryFolder folder;
  mountWithoutAttributes(folder.path());
  const std::string minute = DDLogFileName::applicationName() + " 2024-03-09 14-05";
  const auto created = [&](std::string_view counter) {
    return *DDLogFileInfo(makeFile(folder, minute + std::string(counter) + ".log")).creationDate();
  };
  EXPECT_EQ(created(""), *DDLogFileName::date(minute + ".log"));
  EXPECT_LT(created(""), created(" 2"));
  EXPECT_LT(created(" 9"), created(" 10"));
  DDLogFileInfo other(makeFile(folder, "b.log"));
  EXPECT_EQ(other.creationDate(), other.modificationDate());
  umount(folder.path().c_str());
}

TEST(DDLogFileInfo, ReportsFailuresToTheConsoleAndFollowsNoLink) {
  const support::RecordingConsole console;
  const support::TemporaryFolder folder;
  const std::string victim = makeFile(folder, "victim");
  ASSERT_EQ(symlink(victim.c_str(), folder.path("link.log").c_str()), 0);
  DDLogFileInfo(folder.path("gone.log")).setIsArchived(true);
  DDLogFileInfo(folder.path("gone.log")).setIsArchived(false);
  DDLogFileInfo link(folder.path("link.log"));
  link.setIsArchived(true);
  EXPECT_FALSE(DDLogFileInfo(victim).isArchived());
  link.renameFile("link.log");
  link.renameFile("victim");
  EXPECT_EQ(link.filePath(), victim);
  const std::string attribute = "xattr(quillwort.log.archived, ";
  const std::string gone = attribute + "gone.log): error = No such file or directory";
  EXPECT_THAT(
      console.lines(),
      ElementsAre("DDLogFileInfo: set" + gone, "DDLogFileInfo: remove" + gone,
                  "DDLogFileInfo: set" + attribute + "link.log): error = Operation not permitted",
                  HasSubstr("DDLogFileInfo: Error renaming file (link.log): rename")));
}

TEST(DDLogFileInfo, ReadsItsFactsOnceButForgetsAllExceptTheSize) {
  const support::TemporaryFolder folder;
  DDLogFileInfo info(makeFile(folder, "a.log", "12345"));
  EXPECT_EQ(info.fileSize(), 5U);
  const auto modified = info.modificationDate();
  makeFile(folder, "a.log", "1234567");
  ASSERT_TRUE(FileSystem::setModificationDate(info.filePath(), foundation::Date()));
  EXPECT_EQ(info.modificationDate(), modified);
  info.reset();
  EXPECT_EQ(info.modificationDate(), foundation::Date());
  EXPECT_EQ(info.fileSize(), 5U);
  DDLogFileInfo gone("/gone/b.log");
  DDLogFileInfo newer(makeFile(folder, "b.log"));
  EXPECT_TRUE(newer.reverseCompareByModificationDate(info) < 0);
  EXPECT_TRUE(gone.reverseCompareByCreationDate(info) > 0);
  EXPECT_THAT(gone.description(),
              HasSubstr("creationDate = ; fileAttributes = ; fileName = b.log"));
}

}  // namespace
