#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/FileHandle.h"
#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using foundation::dataOf;
using foundation::textOf;
using platform::FileHandle;
using support::TemporaryFolder;
namespace FileSystem = platform::FileSystem;

mode_t permissionsOf(const std::string& path) { return FileSystem::attributes(path)->permissions; }

void write(const std::string& path, std::string_view text) {
  ASSERT_TRUE(FileSystem::writeFileAtomically(path, dataOf(text)));
}

std::string read(const std::string& path) {
  const auto content = FileSystem::readFile(path, FileSystem::Caching::uncached);
  return content ? std::string(textOf(*content)) : content.error().localizedDescription();
}

class Umask {
 public:
  explicit Umask(mode_t mask) : previous_(umask(mask)) {}
  ~Umask() { umask(previous_); }

 private:
  const mode_t previous_;
};

TEST(FileSystem, CreatesFoldersWithThoseAbove) {
  const TemporaryFolder folder;
  const Umask mask(027);
  ASSERT_TRUE(FileSystem::createDirectory(folder.path("a//b/c/"), 01777));
  EXPECT_EQ(permissionsOf(folder.path("a")), 0750);
  EXPECT_EQ(permissionsOf(folder.path("a/b")), 0750);
  EXPECT_EQ(permissionsOf(folder.path("a/b/c")), 01777);
  ASSERT_TRUE(FileSystem::createDirectory(folder.path("a/b"), 0777));
  EXPECT_EQ(permissionsOf(folder.path("a/b")), 0750);

  write(folder.path("file"), "");
  ASSERT_EQ(symlink("a", folder.path("link").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", folder.path("broken").c_str()), 0);
  EXPECT_TRUE(FileSystem::createDirectory(folder.path("link/d")));
  EXPECT_TRUE(FileSystem::createDirectory(folder.path("link")));
  EXPECT_EQ(FileSystem::createDirectory(folder.path("file")).error().code(), EEXIST);
  EXPECT_EQ(FileSystem::createDirectory(folder.path("file/d")).error().code(), ENOTDIR);
  EXPECT_EQ(FileSystem::createDirectory(folder.path("broken")).error().code(), EEXIST);
  EXPECT_EQ(FileSystem::createDirectory("").error().code(), ENOENT);
}

TEST(FileSystem, CreatesAFolderThatOthersCreateMeanwhile) {
  const TemporaryFolder folder;
  std::atomic<int> failures = 0;
  const auto createAll = [&] {
    for (int i = 0; i < 300; ++i) {
      failures += !FileSystem::createDirectory(folder.path(std::to_string(i) + "/b/c"));
    }
  };
  std::thread other(createAll);
  createAll();
  other.join();
  EXPECT_EQ(failures, 0);
}

TEST(FileSystem, CreatesFilesWithoutFollowingALink) {
  const TemporaryFolder folder;
  write(folder.path("target"), "kept");
  write(folder.path("old"), "content");
  ASSERT_EQ(symlink("target", folder.path("link").c_str()), 0);
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_TRUE(FileSystem::createFile(folder.path("new")));
  EXPECT_TRUE(FileSystem::createFile(folder.path("old")));
  EXPECT_EQ(FileSystem::createFile(folder.path("link")).error().code(), ELOOP);
  EXPECT_FALSE(FileSystem::createFile(folder.path("pipe")));
  EXPECT_EQ(read(folder.path("new")) + read(folder.path("old")), "");
  EXPECT_EQ(read(folder.path("target")), "kept");
}

TEST(FileSystem, ReadsWholeFilesAndRefusesOthers) {
  const TemporaryFolder folder;
  const std::string large(300'000, 'x');
  write(folder.path("large"), large);
  EXPECT_EQ(read(folder.path("large")), large);
  EXPECT_NE(read("/proc/self/status").find("VmRSS"), std::string::npos);
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(read(folder.path("pipe")), "open " + folder.path("pipe") + ": Invalid argument");
  EXPECT_EQ(read(folder.path()), "open " + folder.path() + ": Is a directory");
  EXPECT_EQ(FileSystem::readFile(folder.path("none")).error().code(), ENOENT);
  EXPECT_EQ(FileSystem::readFile(std::string("/proc\0/x", 8)).error().code(), EINVAL);
  ASSERT_TRUE(FileSystem::createFile(folder.path("huge")));
  if (truncate(folder.path("huge").c_str(), off_t{1} << 43) == 0) {
    EXPECT_EQ(FileSystem::readFile(folder.path("huge")).error().code(), ENOMEM);
  }
}

TEST(FileSystem, ReplacesAFileInOneStep) {
  const TemporaryFolder folder;
  const Umask mask(022);
  const std::string path = folder.path("file");
  write(path, "1");
  EXPECT_EQ(permissionsOf(path), 0644);
  ASSERT_EQ(chmod(path.c_str(), 04660), 0);
  ASSERT_EQ(symlink("file", folder.path("link").c_str()), 0);
  write(path, "22");
  EXPECT_EQ(permissionsOf(path), 0660);
  write(folder.path("link"), "333");
  EXPECT_EQ(read(path), "22");
  EXPECT_EQ(read(folder.path("link")), "333");

  ASSERT_TRUE(FileSystem::createDirectory(folder.path("empty/folder")));
  EXPECT_EQ(FileSystem::writeFileAtomically(folder.path("empty/folder"), {}).error().code(),
            EISDIR);
  EXPECT_EQ(FileSystem::writeFileAtomically(folder.path("none/file"), {}).error().code(), ENOENT);
  EXPECT_EQ(FileSystem::contentsOfDirectory(folder.path("empty"))->size(), 1U);
}

TEST(FileSystem, MovesOntoNothingOnly) {
  const TemporaryFolder folder;
  write(folder.path("a"), "a");
  write(folder.path("b"), "b");
  EXPECT_EQ(FileSystem::moveItem(folder.path("a"), folder.path("b")).error().code(), EEXIST);
  EXPECT_EQ(FileSystem::moveItem(folder.path("none"), folder.path("c")).error().code(), ENOENT);
  EXPECT_TRUE(FileSystem::moveItem(folder.path("a"), folder.path("c")));
  EXPECT_FALSE(FileSystem::exists(folder.path("a")));
  EXPECT_EQ(read(folder.path("b")) + read(folder.path("c")), "ba");
}

TEST(FileSystem, TellsAttributesOfTheEntryItself) {
  const TemporaryFolder folder;
  const foundation::Date before = std::chrono::floor<std::chrono::seconds>(
      std::chrono::time_point_cast<foundation::Date::duration>(std::chrono::system_clock::now()));
  write(folder.path("file"), "12345");
  ASSERT_EQ(symlink("nowhere", folder.path("link").c_str()), 0);
  const auto file = FileSystem::attributes(folder.path("file"));
  EXPECT_EQ(file->type, FileSystem::FileType::regular);
  EXPECT_EQ(file->size, 5U);
  EXPECT_EQ(file->owner, geteuid());
  EXPECT_GE(file->modificationDate, before);
  EXPECT_GE(file->creationDate.value_or(before), before);
  EXPECT_EQ(FileSystem::attributes(folder.path("link"))->type, FileSystem::FileType::symbolicLink);
  EXPECT_FALSE(FileSystem::exists(folder.path("link")));

  for (const std::int64_t microseconds : {0L, 1'700'000'000'123'456L, -1L, -1'000'000L}) {
    const foundation::Date date{foundation::Date::duration(microseconds)};
    ASSERT_TRUE(FileSystem::setModificationDate(folder.path("file"), date));
    EXPECT_EQ(FileSystem::attributes(folder.path("file"))->modificationDate, date);
  }
  EXPECT_EQ(FileSystem::setModificationDate(folder.path("link"), {}).error().code(), ENOENT);
}

TEST(FileSystem, KeepsExtendedAttributes) {
  const TemporaryFolder folder;
  const std::string path = folder.path("file");
  write(path, "");
  EXPECT_FALSE(FileSystem::hasExtendedAttribute(path, "log.archived"));
  ASSERT_TRUE(FileSystem::setExtendedAttribute(path, "log.archived"));
  EXPECT_TRUE(FileSystem::hasExtendedAttribute(path, "log.archived"));
  EXPECT_TRUE(FileSystem::removeExtendedAttribute(path, "log.archived"));
  const auto again = FileSystem::removeExtendedAttribute(path, "log.archived");
  EXPECT_TRUE(FileSystem::isAttributeNotFound(again.error()));
  const auto onProc = FileSystem::setExtendedAttribute("/proc/self/status", "log.archived");
  EXPECT_TRUE(FileSystem::isAttributesUnsupported(onProc.error()))
      << onProc.error().localizedDescription();
}

TEST(FileHandle, AppendsToRegularFilesOnly) {
  const TemporaryFolder folder;
  write(folder.path("file"), "1");
  ASSERT_EQ(symlink("file", folder.path("link").c_str()), 0);
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  for (const char* const name : {"link", "pipe", "none", ""}) {
    EXPECT_FALSE(FileHandle::openForAppending(folder.path(name))) << name;
  }
  const auto first = FileHandle::openForAppending(folder.path("file"));
  const auto second = FileHandle::openForAppending(folder.path("file"));
  EXPECT_TRUE(first->write(dataOf("2")));
  EXPECT_TRUE(second->write(dataOf("3")));
  EXPECT_TRUE(first->write(dataOf("4")));
  EXPECT_TRUE(first->synchronize());
  EXPECT_EQ(*second->size(), 4U);
  EXPECT_EQ(read(folder.path("file")), "1234");
  EXPECT_TRUE(first->truncate(2));
  EXPECT_EQ(read(folder.path("file")), "12");
}

}  // namespace
