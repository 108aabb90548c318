#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "ZCommons/Files/ZCLFileLocker.h"
#include "platform/Task.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class ZCLFileLockerTest : public testing::Test {
 protected:
  // Whether flock(1) gets the lock without waiting.
  bool isFree() const {
    const std::string command = "flock -n '" + path + "' true";
    return ::system(command.c_str()) == 0;
  }

  // A process that holds the lock until it is killed.
  pid_t holder() const {
    int ready[2];
    EXPECT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      ZCLFileLocker locker(path);
      const char answer = locker.waitLock() ? 'y' : 'n';
      if (::write(ready[1], &answer, 1) == 1) ::pause();
      ::_exit(0);
    }
    char answer = 0;
    EXPECT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    ::close(ready[0]);
    ::close(ready[1]);
    return child;
  }

  support::TemporaryFolder folder;
  const std::string path = folder.path("lock");
};

}  // namespace

TEST_F(ZCLFileLockerTest, ExcludesOtherLockersAndFlock) {
  ZCLFileLocker locker(path);
  EXPECT_TRUE(locker.unlock());
  EXPECT_NE(::access(path.c_str(), F_OK), 0);
  EXPECT_TRUE(locker.lock());
  EXPECT_TRUE(locker.lock());
  EXPECT_TRUE(locker.waitLock());
  ZCLFileLocker other(path);
  EXPECT_FALSE(other.lock());
  EXPECT_FALSE(isFree());
  EXPECT_TRUE(locker.unlock());
  EXPECT_TRUE(isFree());
  EXPECT_TRUE(other.lock());
  EXPECT_FALSE(locker.lock());

  struct stat file {};
  ASSERT_EQ(::stat(path.c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777, 0600U);
  EXPECT_EQ(file.st_size, 0);
}

TEST_F(ZCLFileLockerTest, WaitsUntilTheHolderDies) {
  const pid_t child = holder();
  ZCLFileLocker locker(path);
  EXPECT_FALSE(locker.lock());
  std::atomic<bool> killed{false};
  std::thread killer([&] {
    killed = true;
    ::kill(child, SIGKILL);
  });
  EXPECT_TRUE(locker.waitLock());
  EXPECT_TRUE(killed);
  killer.join();
  ::waitpid(child, nullptr, 0);
}

TEST_F(ZCLFileLockerTest, AChildInheritsNoLock) {
  std::optional<ZCLFileLocker> locker(path);
  ASSERT_TRUE(locker->lock());
  const pid_t child = ::fork();
  if (child == 0) ::execl("/bin/sleep", "sleep", "60", nullptr), ::_exit(1);
  const std::string executable = "/proc/" + std::to_string(child) + "/exe";
  char target[64] = {};
  while (::readlink(executable.c_str(), target, sizeof target - 1) < 0 ||
         std::string(target).find("sleep") == std::string::npos) {
    std::this_thread::yield();
  }
  locker.reset();
  EXPECT_TRUE(isFree());
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
}

TEST_F(ZCLFileLockerTest, AnswersNoWhereNoFileCanBe) {
  for (const std::string& nowhere : {folder.path("none/lock"), folder.path(""), std::string()}) {
    ZCLFileLocker locker(nowhere);
    EXPECT_FALSE(locker.lock()) << nowhere;
    EXPECT_FALSE(locker.waitLock()) << nowhere;
    EXPECT_FALSE(locker.open()) << nowhere;
  }
}
