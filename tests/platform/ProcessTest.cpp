#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Console.h"
#include "platform/Folders.h"
#include "platform/Process.h"

namespace {

namespace Process = platform::Process;
using platform::Console;
using platform::Folders;
using platform::SearchPathDirectory;
using platform::SearchPathDomain;

// Death tests pass when the code ends the process with this.
const testing::ExitedWithCode success(0);

TEST(Process, NamesThreadsApart) {
  const auto isMain = [] {
    return Process::isMainThread() &&
           Process::threadIdentifier() == static_cast<std::uint32_t>(getpid());
  };
  EXPECT_TRUE(isMain());
  std::thread([&] {
    EXPECT_FALSE(isMain());
    Process::setThreadName("a name of more than 15 bytes");
    EXPECT_EQ(Process::threadName(), "a name of more than 15 bytes");
  }).join();
  EXPECT_EQ(Process::threadName(), "");
  // A forked process has another main thread.
  EXPECT_EXIT(_exit(isMain() ? 0 : 1), success, "");
}

// What a hostile caller can leave to a process that it starts.
void makeHostile() {
  for (int descriptor = 0; descriptor <= 2; ++descriptor) close(descriptor);
  umask(0777);
  signal(SIGCHLD, SIG_IGN);
  signal(SIGPIPE, SIG_IGN);
  sigset_t all;
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, nullptr);
  for (const char* const name : {"HOME", "PATH", "BASH_ENV", "TMPDIR", "TZ", "XDG_DATA_HOME"}) {
    setenv(name, "/trap", 1);
  }
}

// The first thing that is not as it should be; 0 when all is.
int faultAfterSecureStart() {
  makeHostile();
  Process::secureStart();
  for (int descriptor = 0; descriptor <= 2; ++descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISCHR(status.st_mode)) return 1;
  }
  if (fcntl(3, F_GETFD) == 0 && open("/dev/null", O_RDONLY) < 3) return 2;
  if (umask(0) != 022) return 3;
  sigset_t blocked;
  sigprocmask(SIG_SETMASK, nullptr, &blocked);
  for (const int number : {SIGCHLD, SIGPIPE, SIGTERM}) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler != SIG_DFL || sigismember(&blocked, number)) return 4;
  }
  if (std::filesystem::current_path() != "/") return 5;
  std::string environment;
  for (char** variable = environ; *variable; ++variable) environment.append(*variable) += ';';
  if (environment != "PATH=/usr/sbin:/usr/bin:/sbin:/bin;LANG=C;LC_ALL=C;") return 6;
  return setenv("ADDED", "1", 1) == 0 && getenv("ADDED") ? 0 : 7;
}

TEST(Process, StartsSecurelyWhateverItWasLeft) {
  EXPECT_EXIT(_exit(faultAfterSecureStart()), success, "");
  const auto startWithoutDescriptors = [] {
    close(0);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NOFILE, &none);
    Process::secureStart();
    _exit(0);
  };
  EXPECT_EXIT(startWithoutDescriptors(), testing::ExitedWithCode(71), "");
}

TEST(Console, WritesOneMarkedLine) {
  testing::internal::CaptureStderr();
  errno = 77;
  Console::log("a %@ of %d", "line", 2);
  EXPECT_EQ(errno, 77);
  const std::string pattern = "^....-..-.. ..:..:..\\.... PlatformFileTests\\[" +
                              std::to_string(getpid()) + "\\] a line of 2\n$";
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::MatchesRegex(pattern));
}

TEST(Console, OutlivesAStandardErrorThatNobodyReads) {
  const auto write = [] {
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], 2) != 2) _exit(1);
    close(ends[0]);
    signal(SIGPIPE, SIG_DFL);
    Console::log("lost");
    sigset_t pending;
    sigpending(&pending);
    _exit(sigismember(&pending, SIGPIPE) ? 2 : 0);
  };
  EXPECT_EXIT(write(), success, "");
}

// The folders of the user and the temporary one, as a process of these users with these variables
// is told them.
std::string foldersOf(uid_t real, uid_t effective) {
  setenv("HOME", "/trap", 1);
  setenv("XDG_DATA_HOME", "/data", 1);
  setenv("XDG_STATE_HOME", "relative", 1);
  setenv("TMPDIR", "/mine", 1);
  if (setresuid(real, effective, effective) != 0) return "setresuid";
  std::string found;
  for (const auto directory :
       {SearchPathDirectory::applicationSupport, SearchPathDirectory::library}) {
    const auto url = Folders::production().url(directory, SearchPathDomain::user);
    found += (url ? url->absoluteString() : url.error().localizedDescription()) + " ";
  }
  return found + Folders::production().temporaryDirectory().absoluteString();
}

TEST(Folders, ObeyVariablesOfOrdinaryUsersOnly) {
  if (const uid_t self = geteuid(); self != 0) {  // who cannot become others checks itself
    EXPECT_EXIT(_exit(foldersOf(self, self).starts_with("file:///data/ ") ? 0 : 1), success, "");
    return;
  }
  const std::string unknown = "getpwuid 54321: No such file or directory ";
  // By real and effective user; 1 is a daemon.
  const std::map<std::pair<uid_t, uid_t>, std::string> cases = {
      {{0, 0}, "file:///root/.local/share/ file:///root/.local/state/ file:///tmp/"},
      {{1, 1}, "file:///data/ file:///usr/sbin/.local/state/ file:///mine/"},
      {{0, 1}, "file:///usr/sbin/.local/share/ file:///usr/sbin/.local/state/ file:///tmp/"},
      {{0, 54321}, unknown + unknown + "file:///tmp/"}};
  for (const auto& [users, folders] : cases) {
    EXPECT_EXIT(_exit(foldersOf(users.first, users.second) == folders ? 0 : 1), success, "")
        << folders;
  }
}

}  // namespace
