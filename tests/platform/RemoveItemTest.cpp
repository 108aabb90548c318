#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
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
using platform::TreeCursor;
using support::TemporaryFolder;
namespace FileSystem = platform::FileSystem;

void makeFile(const std::string& path) { ASSERT_TRUE(FileSystem::createFile(path)) << path; }
void makeFolder(const std::string& path) { ASSERT_TRUE(FileSystem::createDirectory(path)) << path; }

bool isThere(const std::string& path) { return bool(FileSystem::attributes(path)); }

FileHandle openFolder(const std::string& path) {
  return FileHandle(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

TEST(RemoveItem, RemovesEveryKindOfItem) {
  const TemporaryFolder folder;
  makeFolder(folder.path("outside"));
  makeFile(folder.path("outside/kept"));
  makeFile(folder.path("file"));
  ASSERT_EQ(symlink("outside", folder.path("link").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", folder.path("broken link").c_str()), 0);
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  makeFolder(folder.path("empty"));
  makeFolder(folder.path("tree/.hidden/deeper"));
  makeFile(folder.path("tree/.hidden/deeper/\xff\n"));
  makeFolder(folder.path("tree/second"));
  ASSERT_EQ(symlink("../outside", folder.path("tree/link").c_str()), 0);

  for (const char* const name : {"file", "link", "broken link", "pipe", "empty", "tree"}) {
    EXPECT_TRUE(FileSystem::removeItem(folder.path(name))) << name;
    EXPECT_FALSE(isThere(folder.path(name))) << name;
  }
  EXPECT_TRUE(isThere(folder.path("outside/kept")));
}

TEST(RemoveItem, RefusesWhatNamesNoEntry) {
  const TemporaryFolder folder;
  makeFolder(folder.path("a"));
  struct Case {
    std::string path;
    long code;
  };
  for (const Case& row : {Case{"", EINVAL},
                          {"/", EINVAL},
                          {".", EINVAL},
                          {"..", EINVAL},
                          {folder.path("a/"), EINVAL},
                          {folder.path("a/."), EINVAL},
                          {folder.path("a/.."), EINVAL},
                          {folder.path(std::string("a\0b", 3)), EINVAL},
                          {folder.path("missing"), ENOENT},
                          {folder.path("no/item"), ENOENT}}) {
    const auto result = FileSystem::removeItem(row.path);
    ASSERT_FALSE(result) << row.path;
    EXPECT_EQ(result.error().code(), row.code) << row.path;
  }
  EXPECT_TRUE(isThere(folder.path("a")));
}

TEST(RemoveItem, GoesOnPastWhatStaysAndTellsIt) {
  const TemporaryFolder folder;
  makeFolder(folder.path("item/locked"));
  makeFolder(folder.path("item/unreadable but empty"));
  makeFile(folder.path("item/locked/stays"));
  makeFile(folder.path("item/goes"));
  constexpr uid_t user = 12345;
  ASSERT_TRUE(geteuid() != 0 || (chmod(folder.path().c_str(), 0777) == 0 &&
                                 chown(folder.path("item").c_str(), user, user) == 0));
  ASSERT_EQ(chmod(folder.path("item/locked").c_str(), 0555), 0);
  ASSERT_EQ(chmod(folder.path("item/unreadable but empty").c_str(), 0), 0);
  const auto removeAsUser = [&] {
    if (geteuid() == 0 && seteuid(user) != 0) _exit(1);
    const auto result = FileSystem::removeItem(folder.path("item"));
    const std::string expected = folder.path("item/locked/stays: Permission denied");
    _exit(result || !result.error().localizedDescription().ends_with(expected) ? 2 : 0);
  };
  EXPECT_EXIT(removeAsUser(), testing::ExitedWithCode(0), "");
  EXPECT_EQ(*FileSystem::contentsOfDirectory(folder.path("item")),
            std::vector<std::string>{"locked"});
  EXPECT_EQ(chmod(folder.path("item/locked").c_str(), 0755), 0);
}

void makeChain(const std::string& path, int depth) {
  makeFolder(path);
  FileHandle folder = openFolder(path);
  for (int i = 0; i < depth; ++i) {
    ASSERT_EQ(mkdirat(folder.descriptor(), "a", 0700), 0);
    folder = FileHandle(openat(folder.descriptor(), "a", O_RDONLY | O_CLOEXEC));
  }
}

// Runs `body` with little stack and with all but eight of 64 descriptors in use.
void runInNeed(void (*body)(const std::string&), const std::string& path) {
  const rlimit limit{64, 64};
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0) _exit(1);
  while (open("/dev/null", O_RDONLY) < 55) continue;
  const auto job = [&] { body(path); };
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 256 * 1024);
  pthread_t thread;
  const auto call = [](void* context) -> void* {
    (*static_cast<decltype(job)*>(context))();
    return nullptr;
  };
  if (pthread_create(&thread, &attributes, call, const_cast<void*>(static_cast<const void*>(&job))))
    _exit(1);
  pthread_join(thread, nullptr);
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

TEST(RemoveItem, NeedsNeitherStackNorDescriptorsForDepth) {
  const TemporaryFolder folder(TemporaryFolder::inMemory());
  const auto body = [](const std::string& path) {
    makeChain(path, 10'000);
    EXPECT_TRUE(FileSystem::removeItem(path));
    EXPECT_FALSE(isThere(path));
  };
  EXPECT_EXIT(runInNeed(body, folder.path("item")), testing::ExitedWithCode(0), "");
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

// Two folders that nobody may touch, with the names of the tree that is removed.
class Canaries {
 public:
  explicit Canaries(const TemporaryFolder& folder) {
    for (const char* const name : {"vault", "refuge"}) {
      for (const char* const inner : {"", "/a", "/s", "/a/s", "/a/a", "/a/a/s"}) {
        const std::string place = folder.path(std::string(name) + inner);
        makeFolder(place);
        makeFile(place + "/f");
        files_.push_back(place + "/f");
      }
    }
  }

  bool areAlive() const { return std::all_of(files_.begin(), files_.end(), isThere); }

 private:
  std::vector<std::string> files_;
};

// Goes about in the tree without following a link, and swaps, moves away, brings back and refills.
class Attacker {
 public:
  Attacker(const TemporaryFolder& folder, unsigned seed, std::size_t depth)
      : work_(openFolder(folder.path("work"))),
        refuge_(openFolder(folder.path("refuge"))),
        vault_(folder.path("vault")),
        moved_(1, static_cast<char>('0' + seed)),
        random_(seed),
        depth_(depth) {}

  void strike() {
    const FileHandle place = placeInTree();
    const int at = place.descriptor();
    const char* const name = pick(2) ? "a" : "s";
    switch (pick(6)) {
      case 0:
        renameat(at, name, at, "x");
        symlinkat(vault_.c_str(), at, name);
        break;
      case 1:
        unlinkat(at, name, 0);
        renameat(at, "x", at, name);
        break;
      case 2:
      case 3:
        renameat(at, name, refuge_.descriptor(), moved_.c_str());
        break;
      case 4:
        renameat(refuge_.descriptor(), moved_.c_str(), at, name);
        break;
      default:
        mkdirat(at, name, 0700);
        FileHandle(openat(at, "f", O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    }
  }

 private:
  std::size_t pick(std::size_t count) { return random_() % count; }

  FileHandle placeInTree() {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    FileHandle place(openat(work_.descriptor(), ".", flags));
    const char* name = "item";
    for (std::size_t steps = pick(depth_ + 2); steps > 0; --steps) {
      FileHandle next(openat(place.descriptor(), name, flags));
      if (!next) break;
      place = std::move(next);
      name = pick(4) ? "a" : "s";
    }
    return place;
  }

  const FileHandle work_;
  const FileHandle refuge_;
  const std::string vault_;
  const std::string moved_;
  std::minstd_rand random_;
  const std::size_t depth_;
};

struct Attack {
  std::size_t depth;
  int rounds;
};

class RemoveItemUnderAttack : public testing::TestWithParam<Attack> {};

TEST_P(RemoveItemUnderAttack, TouchesNothingOutside) {
  const TemporaryFolder folder(TemporaryFolder::inMemory());
  const Canaries canaries(folder);
  makeFolder(folder.path("work"));
  const std::string item = folder.path("work/item");
  std::vector<std::string> entries;
  for (std::string place = item; entries.size() < 2 * GetParam().depth + 1; place += "/a") {
    entries.push_back(place);
    entries.push_back(place + "/s");
  }

  std::atomic<bool> stop = false;
  std::vector<std::thread> threads;
  for (unsigned seed = 1; seed <= 2; ++seed) {
    threads.emplace_back([&, seed] {
      Attacker attacker(folder, seed, GetParam().depth);
      while (!stop) attacker.strike();
    });
  }
  int whole = 0;
  for (int round = 0; round < GetParam().rounds && canaries.areAlive(); ++round) {
    for (const std::string& entry : entries) mkdir(entry.c_str(), 0700);
    whole += bool(FileSystem::removeItem(item));
  }
  stop = true;
  for (std::thread& thread : threads) thread.join();

  EXPECT_TRUE(canaries.areAlive());
  EXPECT_GT(whole, 0);
  EXPECT_TRUE(FileSystem::removeItem(folder.path("work")));
}

INSTANTIATE_TEST_SUITE_P(Trees, RemoveItemUnderAttack,
                         testing::Values(Attack{1, 8'000}, Attack{3, 7'000}, Attack{9, 7'000}));

TEST(TreeCursor, IsLostWhereAFolderWasMovedAwayAndFindsItsWayFurtherUp) {
  const TemporaryFolder folder;
  makeChain(folder.path("item"), 9);
  TreeCursor cursor(openFolder(folder.path("item")));
  for (int i = 0; i < 9; ++i) ASSERT_TRUE(cursor.enter("a"));
  const std::string sixth = folder.path("item/a/a/a/a/a/a");
  ASSERT_EQ(rename(sixth.c_str(), folder.path("a").c_str()), 0);
  makeFolder(sixth);

  std::vector<bool> found;
  for (int i = 0; i < 9; ++i) found.push_back(cursor.leave());
  EXPECT_EQ(found, (std::vector<bool>{true, true, true, false, false, false, true, true, true}));
  struct stat here {};
  struct stat top {};
  fstat(cursor.descriptor(), &here);
  stat(folder.path("item").c_str(), &top);
  EXPECT_EQ(here.st_ino, top.st_ino);
}

}  // namespace
