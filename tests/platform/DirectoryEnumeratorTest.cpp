#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/FileHandle.h"
#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using platform::DirectoryEnumerator;
using platform::FileHandle;
using support::TemporaryFolder;
namespace FileSystem = platform::FileSystem;

// A visible tree of two levels, a hidden one, and links that lead out of it and round in it.
class DirectoryEnumeratorTest : public testing::Test {
 protected:
  DirectoryEnumeratorTest() {
    for (const char* const name : {"tree/a/b", "tree/.hidden/c", "tree/d", "outside"}) {
      EXPECT_TRUE(FileSystem::createDirectory(folder.path(name)));
    }
    for (const char* const name :
         {"tree/f", "tree/.g", "tree/a/h", "tree/a/.i", "tree/.hidden/j", "outside/k"}) {
      EXPECT_TRUE(FileSystem::createFile(folder.path(name)));
    }
    EXPECT_EQ(symlink("../outside", folder.path("tree/link").c_str()), 0);
    EXPECT_EQ(symlink("../..", folder.path("tree/a/loop").c_str()), 0);
  }

  // What each entry's path below the tree tells: its level, and whether it is a folder.
  using Entries = std::map<std::string, std::pair<std::size_t, bool>>;

  Entries entriesBelow(const std::string& start, std::size_t deepest) {
    Entries entries;
    DirectoryEnumerator walk(start);
    while (walk.next()) {
      const std::string path(walk.path());
      EXPECT_EQ(path.substr(path.rfind('/') + 1), walk.name());
      EXPECT_TRUE(entries.count(path.substr(0, path.rfind('/'))) || walk.level() == 1) << path;
      EXPECT_TRUE(entries.emplace(path, std::pair(walk.level(), walk.isDirectory())).second);
      if (walk.level() >= deepest) walk.skipDescendants();
    }
    EXPECT_FALSE(walk.next());
    return entries;
  }

  const TemporaryFolder folder{TemporaryFolder::inMemory()};
};

TEST_F(DirectoryEnumeratorTest, TellsTheVisibleTreeFoldersFirst) {
  const std::string tree = folder.path("tree");
  const Entries expected = {{tree + "/a", {1, true}},    {tree + "/a/b", {2, true}},
                            {tree + "/a/h", {2, false}}, {tree + "/a/loop", {2, false}},
                            {tree + "/d", {1, true}},    {tree + "/f", {1, false}},
                            {tree + "/link", {1, false}}};
  EXPECT_EQ(entriesBelow(tree, 100), expected);
  EXPECT_EQ(entriesBelow(tree + "/", 100), expected);
}

TEST_F(DirectoryEnumeratorTest, LeavesOutTheContentsOfASkippedFolder) {
  const std::string tree = folder.path("tree");
  const Entries expected = {{tree + "/a", {1, true}},
                            {tree + "/d", {1, true}},
                            {tree + "/f", {1, false}},
                            {tree + "/link", {1, false}}};
  EXPECT_EQ(entriesBelow(tree, 1), expected);
}

TEST_F(DirectoryEnumeratorTest, PassesOverWhatCannotBeRead) {
  EXPECT_TRUE(entriesBelow(folder.path("missing"), 100).empty());
  EXPECT_TRUE(entriesBelow(folder.path("tree/f"), 100).empty());
  const auto walkAsUser = [&] {
    if (geteuid() == 0 && seteuid(12345) != 0) _exit(1);
    _exit(entriesBelow(folder.path("tree"), 100).size() == 6 ? 0 : 2);
  };
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(folder.path("tree/d").c_str(), 0), 0);
  // Its names can be read, but nothing in it can be reached.
  ASSERT_EQ(chmod(folder.path("tree/a").c_str(), 0444), 0);
  ASSERT_TRUE(FileSystem::removeItem(folder.path("tree/f")));
  EXPECT_EXIT(walkAsUser(), testing::ExitedWithCode(0), "");
  EXPECT_EQ(chmod(folder.path("tree/a").c_str(), 0755), 0);
}

TEST_F(DirectoryEnumeratorTest, NeedsFewDescriptorsForDepth) {
  const auto walk = [&] {
    const rlimit limit{64, 64};
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) _exit(1);
    while (open("/dev/null", O_RDONLY) < 55) continue;
    FileHandle place(open(folder.path("tree/d").c_str(), O_RDONLY | O_CLOEXEC));
    for (int i = 0; i < 10'000; ++i) {
      if (mkdirat(place.descriptor(), "z", 0700) || mkdirat(place.descriptor(), "y", 0700))
        _exit(2);
      place = FileHandle(openat(place.descriptor(), "z", O_RDONLY | O_CLOEXEC));
    }
    DirectoryEnumerator entries(folder.path("tree/d"));
    std::size_t count = 0;
    std::size_t deepest = 0;
    for (; entries.next(); ++count) deepest = std::max(deepest, entries.level());
    _exit(count == 20'000 && deepest == 10'000 ? 0 : 3);
  };
  EXPECT_EXIT(walk(), testing::ExitedWithCode(0), "");
}

}  // namespace
