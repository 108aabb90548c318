#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace FileSystem = platform::FileSystem;

// What each entry's path tells: its level, and whether it is a folder.
using Entries = std::map<std::string, std::pair<std::size_t, bool>>;

Entries entriesBelow(const std::string& start, std::size_t deepest = 100) {
  Entries entries;
  platform::DirectoryEnumerator walk(start);
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

// A visible tree of two levels, a hidden one, and links that lead out of it and round in it.
class DirectoryEnumeratorTest : public testing::Test {
 protected:
  DirectoryEnumeratorTest() {
    for (const char* const name : {"/a/b", "/.hidden/c", "/d", "/../outside"}) {
      EXPECT_TRUE(FileSystem::createDirectory(tree + name));
    }
    for (const char* const name : {"/f", "/.g", "/a/h", "/a/.i", "/.hidden/j", "/../outside/k"}) {
      EXPECT_TRUE(FileSystem::createFile(tree + name));
    }
    EXPECT_EQ(symlink("../outside", (tree + "/link").c_str()), 0);
    EXPECT_EQ(symlink("../..", (tree + "/a/loop").c_str()), 0);
  }

  const support::TemporaryFolder folder;
  const std::string tree = folder.path("tree");
};

TEST_F(DirectoryEnumeratorTest, TellsTheVisibleTreeFoldersFirstWithoutWhatIsSkipped) {
  Entries expected = {{tree + "/a", {1, true}},
                      {tree + "/d", {1, true}},
                      {tree + "/f", {1, false}},
                      {tree + "/link", {1, false}}};
  EXPECT_EQ(entriesBelow(tree, 1), expected);
  expected.insert(
      {{tree + "/a/b", {2, true}}, {tree + "/a/h", {2, false}}, {tree + "/a/loop", {2, false}}});
  EXPECT_EQ(entriesBelow(tree), expected);
  EXPECT_EQ(entriesBelow(tree + "/"), expected);
}

TEST_F(DirectoryEnumeratorTest, PassesOverWhatCannotBeRead) {
  EXPECT_TRUE(entriesBelow(tree + "/missing").empty());
  EXPECT_TRUE(entriesBelow(tree + "/f").empty());
  const auto walkAsUser = [&] {
    if (geteuid() == 0 && seteuid(12345) != 0) _exit(1);
    _exit(entriesBelow(tree).size() == 7 ? 0 : 2);
  };
  chmod(folder.path().c_str(), 0755);
  chmod((tree + "/d").c_str(), 0);
  // Its names can be read, but nothing in it can be reached.
  chmod((tree + "/a").c_str(), 0444);
  EXPECT_EXIT(walkAsUser(), testing::ExitedWithCode(0), "");
  chmod((tree + "/a").c_str(), 0755);
}

}  // namespace
