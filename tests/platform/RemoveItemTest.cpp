#include <errno.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/FileSystem.h"
#include "platform/posix/TreeCursor.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using platform::FileHandle;
using support::TemporaryFolder;
namespace FileSystem = platform::FileSystem;

// Names that end with a slash become folders, with those above, the others files.
void makeItems(const TemporaryFolder& folder, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    const std::string path = folder.path(name);
    ASSERT_TRUE(name.ends_with('/') ? FileSystem::createDirectory(path)
                                    : FileSystem::createFile(path))
        << path;
  }
}

bool isThere(const std::string& path) { return bool(FileSystem::attributes(path)); }

FileHandle openFolder(const std::string& name, int parent = AT_FDCWD) {
  return FileHandle(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

TEST(RemoveItem, RemovesEveryKindOfItem) {
  const TemporaryFolder folder;
  makeItems(folder, {"outside/", "outside/kept", "file", "empty/", "tree/.hidden/deeper/",
                     "tree/.hidden/deeper/\xff\n", "tree/second/"});
  ASSERT_EQ(symlink("outside", folder.path("link").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", folder.path("broken link").c_str()), 0);
  ASSERT_EQ(symlink("../outside", folder.path("tree/link").c_str()), 0);
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  for (const char* const name : {"file", "link", "broken link", "pipe", "empty", "tree"}) {
    EXPECT_TRUE(FileSystem::removeItem(folder.path(name))) << name;
    EXPECT_FALSE(isThere(folder.path(name))) << name;
  }
  EXPECT_TRUE(isThere(folder.path("outside/kept")));
}

TEST(RemoveItem, RefusesWhatNamesNoEntry) {
  const TemporaryFolder folder;
  makeItems(folder, {"a/"});
  const std::string a = folder.path("a");
  for (const std::string& path : {std::string(), std::string("/"), std::string("."),
                                  std::string(".."), a + "/", a + "/.", a + "/..", a + '\0'}) {
    EXPECT_EQ(FileSystem::removeItem(path).error().code(), EINVAL) << path;
  }
  for (const char* const missing : {"missing", "no/item"}) {
    EXPECT_EQ(FileSystem::removeItem(folder.path(missing)).error().code(), ENOENT) << missing;
  }
  EXPECT_TRUE(isThere(a));
}

TEST(RemoveItem, GoesOnPastWhatStaysAndTellsIt) {
  const TemporaryFolder folder;
  makeItems(folder, {"item/locked/", "item/locked/stays", "item/goes", "item/unreadable/"});
  const std::string item = folder.path("item");
  const std::string locked = folder.path("item/locked");
  chmod(folder.path().c_str(), 0777);
  chmod(locked.c_str(), 0555);
  chmod(folder.path("item/unreadable").c_str(), 0);
  const auto removeAsUser = [&] {
    constexpr uid_t user = 12345;
    if (geteuid() == 0 && (chown(item.c_str(), user, user) != 0 || seteuid(user) != 0)) _exit(1);
    const auto result = FileSystem::removeItem(item);
    const std::string expected = locked + "/stays: Permission denied";
    _exit(result || !result.error().localizedDescription().ends_with(expected) ? 2 : 0);
  };
  EXPECT_EXIT(removeAsUser(), testing::ExitedWithCode(0), "");
  EXPECT_EQ(*FileSystem::contentsOfDirectory(item), std::vector<std::string>{"locked"});
  chmod(locked.c_str(), 0755);
}

// Walks and removes a deep tree with little stack and with eight of 64 descriptors.
[[noreturn]] void walkAndRemoveInNeed(const std::string& item) {
  const rlimit stack{256 * 1024, 256 * 1024};
  const rlimit descriptors{64, 64};
  if (setrlimit(RLIMIT_STACK, &stack) || setrlimit(RLIMIT_NOFILE, &descriptors)) _exit(1);
  while (open("/dev/null", O_RDONLY) < 55) continue;
  mkdir(item.c_str(), 0700);
  FileHandle place = openFolder(item);
  for (int i = 0; i < 10'000; ++i) {
    if (mkdirat(place.descriptor(), "a", 0700) || mkdirat(place.descriptor(), "b", 0700)) _exit(2);
    place = openFolder("a", place.descriptor());
  }
  std::size_t count = 0;
  std::size_t deepest = 0;
  for (platform::DirectoryEnumerator entries(item); entries.next(); ++count) {
    deepest = std::max(deepest, entries.level());
  }
  if (count != 20'000 || deepest != 10'000) _exit(3);
  _exit(FileSystem::removeItem(item) && !isThere(item) ? 0 : 4);
}

TEST(RemoveItem, NeedsNeitherStackNorDescriptorsForDepthAndSoDoesTheWalk) {
  const TemporaryFolder folder(TemporaryFolder::inMemory());
  EXPECT_EXIT(walkAndRemoveInNeed(folder.path("item")), testing::ExitedWithCode(0), "");
}

TEST(RemoveItem, ComesToAnEndInAFolderThatIsRefilledEndlessly) {
  const TemporaryFolder folder(TemporaryFolder::inMemory());
  std::atomic<unsigned> refills = 0;
  std::thread refiller([&] {
    while (++refills < 20'000) {
      mkdir(folder.path("item").c_str(), 0700);
      mkdir(folder.path("item/a").c_str(), 0700);
      mknod(folder.path("item/a/" + std::to_string(refills)).c_str(), S_IFREG | 0600, 0);
    }
  });
  while (refills < 20'000) static_cast<void>(FileSystem::removeItem(folder.path("item")));
  refiller.join();
}

// A folder of the tree below "work", reached without following a link.
FileHandle someFolder(const TemporaryFolder& folder, std::size_t depth, std::minstd_rand& random) {
  FileHandle place = openFolder(folder.path("work"));
  const char* name = "item";
  for (std::size_t steps = random() % (depth + 2); steps > 0; --steps) {
    FileHandle next = openFolder(name, place.descriptor());
    if (!next) break;
    place = std::move(next);
    name = random() % 4 ? "a" : "s";
  }
  return place;
}

// One of: puts a link in a folder's place, undoes that, brings back, refills, moves away.
void strike(const TemporaryFolder& folder, const FileHandle& place, const std::string& moved,
            std::minstd_rand& random) {
  const int at = place.descriptor();
  const char* const name = random() % 2 ? "a" : "s";
  switch (random() % 6) {
    case 0:
      renameat(at, name, at, "x");
      symlinkat(folder.path("vault").c_str(), at, name);
      break;
    case 1:
      unlinkat(at, name, 0);
      renameat(at, "x", at, name);
      break;
    case 2:
      renameat(AT_FDCWD, moved.c_str(), at, name);
      break;
    case 3:
      mkdirat(at, name, 0700);
      FileHandle(openat(at, "f", O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
      break;
    default:
      renameat(at, name, AT_FDCWD, moved.c_str());
  }
}

class RemoveItemUnderAttack : public testing::TestWithParam<std::size_t> {};

TEST_P(RemoveItemUnderAttack, TouchesNothingOutside) {
  const std::size_t depth = GetParam();
  const TemporaryFolder folder(TemporaryFolder::inMemory());
  std::vector<std::string> canaries;
  for (const std::string outside : {"vault/", "refuge/"}) {
    // The names of the tree that is removed.
    for (const char* const inner : {"", "a/", "s/", "a/s/", "a/a/", "a/a/s/"}) {
      canaries.push_back(folder.path(outside + inner + "f"));
      makeItems(folder, {outside + inner, outside + inner + "f"});
    }
  }
  makeItems(folder, {"work/"});
  const std::string item = folder.path("work/item");
  std::vector<std::string> entries;
  for (std::string place = item; entries.size() < 2 * depth + 1; place += "/a") {
    entries.insert(entries.end(), {place, place + "/s"});
  }

  const auto canariesLive = [&] { return std::ranges::all_of(canaries, isThere); };
  std::atomic<bool> stop = false;
  const auto attack = [&](unsigned seed) {
    std::minstd_rand random(seed);
    const std::string moved = folder.path("refuge/" + std::to_string(seed));
    while (!stop) strike(folder, someFolder(folder, depth, random), moved, random);
  };
  std::thread attackers[] = {std::thread(attack, 1), std::thread(attack, 2)};
  int whole = 0;
  for (int round = 0; round < 7'000 && canariesLive(); ++round) {
    for (const std::string& entry : entries) mkdir(entry.c_str(), 0700);
    whole += bool(FileSystem::removeItem(item));
  }
  stop = true;
  for (std::thread& attacker : attackers) attacker.join();
  EXPECT_TRUE(canariesLive());
  EXPECT_GT(whole, 0);
  EXPECT_TRUE(FileSystem::removeItem(folder.path("work")));
}

INSTANTIATE_TEST_SUITE_P(Depths, RemoveItemUnderAttack, testing::Values(1U, 3U, 9U));

TEST(TreeCursor, IsLostWhereAFolderWasMovedAwayAndFindsItsWayFurtherUp) {
  const TemporaryFolder folder;
  makeItems(folder, {"item/a/a/a/a/a/a/a/a/a/", "item/top"});
  platform::TreeCursor cursor(openFolder(folder.path("item")));
  for (int i = 0; i < 9; ++i) ASSERT_TRUE(cursor.enter("a"));
  const std::string sixth = folder.path("item/a/a/a/a/a/a");
  ASSERT_EQ(rename(sixth.c_str(), folder.path("a").c_str()), 0);
  makeItems(folder, {"item/a/a/a/a/a/a/"});

  std::vector<bool> found;
  for (int i = 0; i < 9; ++i) found.push_back(cursor.leave());
  EXPECT_EQ(found, (std::vector<bool>{true, true, true, false, false, false, true, true, true}));
  EXPECT_EQ(faccessat(cursor.descriptor(), "top", F_OK, 0), 0);
}

}  // namespace
