#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "foundation/Format.h"
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

// Goes up, down, and up again, and stays with the file when it is renamed.
void expectArchivedFlag(const support::TemporaryFolder& folder) {
  const support::RecordingConsole console;
  DDLogFileInfo info(makeFile(folder, "a.log"));
  for (const bool archived : {false, true, true, false, false, true}) {
    info.setIsArchived(archived);
    EXPECT_EQ(info.isArchived(), archived);
  }
  info.renameFile("b.log");
  EXPECT_EQ(info.filePath(), folder.path("b.log"));
  EXPECT_TRUE(info.isArchived());
  EXPECT_THAT(console.lines(), ElementsAre());
}

TEST(DDLogFileInfo, KeepsTheArchivedFlagAsAnAttribute) {
  const support::TemporaryFolder folder;
  expectArchivedFlag(folder);
  EXPECT_TRUE(FileSystem::hasExtendedAttribute(folder.path("b.log"), "quillwort.log.archived"));
}

void writeText(const char* path, std::string_view text) {
  const int file = open(path, O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size())) << path;
  close(file);
}

// A private mount of a file system without extended attributes.
void mountWithoutAttributes(const std::string& path) {
  if (geteuid() == 0) {
    ASSERT_EQ(unshare(CLONE_NEWNS), 0);
  } else {
    const std::string map = foundation::format("0 %d 1", geteuid());
    ASSERT_EQ(unshare(CLONE_NEWNS | CLONE_NEWUSER), 0);
    writeText("/proc/self/uid_map", map);
  }
  ASSERT_EQ(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
  ASSERT_EQ(mount("none", path.c_str(), "ramfs", 0, nullptr), 0);
}

TEST(DDLogFileInfo, KeepsTheArchivedFlagWhereThereAreNoAttributes) {
  const support::TemporaryFolder folder;
  mountWithoutAttributes(folder.path());
  expectArchivedFlag(folder);
  EXPECT_FALSE(FileSystem::hasExtendedAttribute(folder.path("b.log"), "quillwort.log.archived"));
  const std::string& application = DDLogFileName::applicationName();
  const auto created = [&](std::string_view date) {
    return *DDLogFileInfo(makeFile(folder, application + std::string(date))).creationDate();
  };
  const auto minute = *DDLogFileName::date(application + " 2024-03-09 14-05.log");
  EXPECT_EQ(created(" 2024-03-09 14-05.log"), minute);
  EXPECT_LT(created(" 2024-03-09 14-05.log"), created(" 2024-03-09 14-05 2.log"));
  EXPECT_LT(created(" 2024-03-09 14-05 9.log"), created(" 2024-03-09 14-05 10.log"));
  DDLogFileInfo other(folder.path("b.log"));
  EXPECT_EQ(other.creationDate(), other.modificationDate());
  ASSERT_EQ(umount(folder.path().c_str()), 0);
}

TEST(DDLogFileInfo, ReportsFailuresToTheConsole) {
  const support::RecordingConsole console;
  const support::TemporaryFolder folder;
  const std::string victim = makeFile(folder, "victim");
  ASSERT_EQ(symlink(victim.c_str(), folder.path("link.log").c_str()), 0);
  DDLogFileInfo(folder.path("gone.log")).setIsArchived(true);
  DDLogFileInfo(folder.path("gone.log")).setIsArchived(false);
  DDLogFileInfo(folder.path("link.log")).setIsArchived(true);
  EXPECT_FALSE(DDLogFileInfo(victim).isArchived());
  DDLogFileInfo occupied(folder.path("link.log"));
  occupied.renameFile("link.log");
  occupied.renameFile("victim");
  EXPECT_EQ(occupied.filePath(), victim);
  EXPECT_THAT(
      console.lines(),
      ElementsAre(
          "DDLogFileInfo: setxattr(quillwort.log.archived, gone.log): error = No such file or "
          "directory",
          "DDLogFileInfo: removexattr(quillwort.log.archived, gone.log): error = No such file or "
          "directory",
          "DDLogFileInfo: setxattr(quillwort.log.archived, link.log): error = Operation not "
          "permitted",
          HasSubstr("DDLogFileInfo: Error renaming file (link.log): rename")));
}

TEST(DDLogFileInfo, ReadsItsFactsOnceButForgetsAllExceptTheSize) {
  const support::TemporaryFolder folder;
  DDLogFileInfo info(makeFile(folder, "a.log", "12345"));
  EXPECT_EQ(info.fileSize(), 5U);
  const auto modified = info.modificationDate();
  EXPECT_LT(info.age(), 3600);
  makeFile(folder, "a.log", "1234567");
  ASSERT_TRUE(FileSystem::setModificationDate(info.filePath(), foundation::Date()));
  EXPECT_EQ(info.modificationDate(), modified);
  info.reset();
  EXPECT_EQ(info.modificationDate(), foundation::Date());
  EXPECT_EQ(info.fileSize(), 5U);
  DDLogFileInfo gone("/gone");
  DDLogFileInfo newer(makeFile(folder, "b.log"));
  EXPECT_TRUE(newer.reverseCompareByModificationDate(info) < 0);
  EXPECT_TRUE(gone.reverseCompareByCreationDate(info) > 0);
  EXPECT_EQ(info, DDLogFileInfo(info.filePath()));
  EXPECT_THAT(info.description(), HasSubstr("fileName = a.log"));
  EXPECT_THAT(DDLogFileInfo("/gone/b.log").description(),
              HasSubstr("creationDate = ; fileAttributes = ; fileName = b.log"));
}

}  // namespace
