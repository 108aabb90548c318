#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/FileHandle.h"
#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using foundation::dataOf;
using foundation::Date;
using platform::FileHandle;
namespace FileSystem = platform::FileSystem;

// Names in the test's folder, and the error that each meets; 0 for success.
using Codes = std::map<std::string, long>;

template <typename Result>
long codeOf(const Result& result) {
  return result ? 0 : result.error().code();
}

void write(const std::string& path, std::string_view text) {
  ASSERT_TRUE(FileSystem::writeFileAtomically(path, dataOf(text)));
}

std::string read(const std::string& path) {
  const auto content = FileSystem::readFile(path, FileSystem::Caching::uncached);
  return content ? std::string(foundation::textOf(*content))
                 : content.error().localizedDescription();
}

// A folder with one entry of each kind.
class FileSystemTest : public testing::Test {
 protected:
  FileSystemTest() {
    write(path("file"), "12345");
    EXPECT_TRUE(FileSystem::createDirectory(path("folder/inner")));
    EXPECT_EQ(symlink("file", path("link").c_str()), 0);
    EXPECT_EQ(symlink("folder", path("folder link").c_str()), 0);
    EXPECT_EQ(symlink("nowhere", path("broken").c_str()), 0);
    EXPECT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  }
  ~FileSystemTest() override { umask(previousMask_); }

  std::string path(std::string_view name) const { return folder_.path(name); }
  mode_t permissions(std::string_view name) {
    return FileSystem::attributes(path(name))->permissions;
  }

 private:
  const mode_t previousMask_ = umask(027);
  const support::TemporaryFolder folder_;
};

TEST_F(FileSystemTest, CreatesFoldersWithThoseAbove) {
  ASSERT_TRUE(FileSystem::createDirectory(path("a//b/c/"), 01777));
  ASSERT_TRUE(FileSystem::createDirectory(path("a/b"), 0777));
  EXPECT_EQ(permissions("a"), 0750);
  EXPECT_EQ(permissions("a/b"), 0750);
  EXPECT_EQ(permissions("a/b/c"), 01777);
  for (const auto& [name, code] : Codes{{"folder link", 0},
                                        {"folder link/new", 0},
                                        {"file", EEXIST},
                                        {"file/new", ENOTDIR},
                                        {"broken", EEXIST}}) {
    EXPECT_EQ(codeOf(FileSystem::createDirectory(path(name))), code) << name;
  }
  EXPECT_EQ(codeOf(FileSystem::createDirectory("")), ENOENT);
}

TEST_F(FileSystemTest, CreatesAFolderThatOthersCreateMeanwhile) {
  std::atomic<int> failures = 0;
  const auto createAll = [&] {
    for (int i = 0; i < 300; ++i) {
      failures += !FileSystem::createDirectory(path(std::to_string(i) + "/b/c"));
    }
  };
  std::thread other(createAll);
  createAll();
  other.join();
  EXPECT_EQ(failures, 0);
}

TEST_F(FileSystemTest, CreatesFilesWithoutFollowingALink) {
  EXPECT_FALSE(FileSystem::createFile(path("pipe")));
  EXPECT_EQ(codeOf(FileSystem::createFile(path("link"))), ELOOP);
  EXPECT_EQ(read(path("link")), "12345");
  EXPECT_TRUE(FileSystem::createFile(path("file")));
  EXPECT_EQ(read(path("file")), "");
}

TEST_F(FileSystemTest, ReadsWholeFilesAndRefusesOthers) {
  const std::string large(300'000, 'x');
  write(path("large"), large);
  EXPECT_EQ(read(path("large")), large);
  EXPECT_NE(read("/proc/self/status").find("VmRSS"), std::string::npos);
  EXPECT_EQ(read(path("pipe")), "open " + path("pipe") + ": Invalid argument");
  EXPECT_EQ(read(path("folder")), "open " + path("folder") + ": Is a directory");
  EXPECT_EQ(codeOf(FileSystem::readFile(path("none"))), ENOENT);
  EXPECT_EQ(codeOf(FileSystem::readFile(std::string("/proc\0/x", 8))), EINVAL);
}

TEST_F(FileSystemTest, ReplacesAFileInOneStep) {
  EXPECT_EQ(permissions("file"), 0640);
  ASSERT_EQ(chmod(path("file").c_str(), 04664), 0);
  write(path("file"), "22");
  EXPECT_EQ(permissions("file"), 0664);
  write(path("link"), "333");
  EXPECT_EQ(read(path("file")) + read(path("link")), "22333");
  EXPECT_EQ(codeOf(FileSystem::writeFileAtomically(path("folder/inner"), {})), EISDIR);
  EXPECT_EQ(codeOf(FileSystem::writeFileAtomically(path("none/file"), {})), ENOENT);
  EXPECT_EQ(FileSystem::contentsOfDirectory(path("folder"))->size(), 1U);
}

TEST_F(FileSystemTest, MovesOntoNothingOnly) {
  for (const auto& [target, code] : Codes{{"broken", EEXIST}, {"folder", EEXIST}, {"new", 0}}) {
    EXPECT_EQ(codeOf(FileSystem::moveItem(path("file"), path(target))), code) << target;
  }
  EXPECT_EQ(codeOf(FileSystem::moveItem(path("file"), path("newer"))), ENOENT);
  EXPECT_EQ(read(path("new")), "12345");
}

TEST_F(FileSystemTest, TellsAttributesOfTheEntryItself) {
  using FileSystem::attributes;
  const auto now = std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
  const Date created = attributes(path("file"))->creationDate.value_or(now);
  EXPECT_LT(now - created, std::chrono::minutes(10));
  EXPECT_EQ(attributes(path("link"))->type, FileSystem::FileType::symbolicLink);
  EXPECT_FALSE(FileSystem::exists(path("broken")));
  for (const std::int64_t microseconds : {0L, 1'700'000'000'123'456L, -1L, -1'000'000L}) {
    const Date date{Date::duration(microseconds)};
    ASSERT_TRUE(FileSystem::setModificationDate(path("file"), date));
    EXPECT_EQ(attributes(path("file"))->modificationDate, date);
  }
  EXPECT_EQ(codeOf(FileSystem::setModificationDate(path("broken"), {})), ENOENT);
}

TEST_F(FileSystemTest, KeepsExtendedAttributes) {
  const std::string file = path("file");
  ASSERT_TRUE(FileSystem::setExtendedAttribute(file, "log.archived"));
  EXPECT_TRUE(FileSystem::hasExtendedAttribute(file, "log.archived"));
  EXPECT_TRUE(FileSystem::removeExtendedAttribute(file, "log.archived"));
  const auto again = FileSystem::removeExtendedAttribute(file, "log.archived");
  EXPECT_TRUE(FileSystem::isAttributeNotFound(again.error()));
  const auto onProc = FileSystem::setExtendedAttribute("/proc/self/comm", "log.archived");
  EXPECT_TRUE(FileSystem::isAttributesUnsupported(onProc.error()));
}

TEST_F(FileSystemTest, AppendsToRegularFilesOnly) {
  for (const char* const name : {"link", "pipe", "none", ""}) {
    EXPECT_FALSE(FileHandle::openForAppending(path(name))) << name;
  }
  const auto first = FileHandle::openForAppending(path("file"));
  const auto second = FileHandle::openForAppending(path("file"));
  for (const auto* const handle : {&first, &second, &first}) {
    EXPECT_TRUE((*handle)->write(dataOf("x")));
  }
  EXPECT_TRUE(first->synchronize());
  EXPECT_EQ(*second->size(), 8U);
  EXPECT_EQ(read(path("file")), "12345xxx");
  EXPECT_TRUE(first->truncate(2));
  EXPECT_EQ(read(path("file")), "12");
}

}  // namespace
