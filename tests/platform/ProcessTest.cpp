#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Console.h"
#include "platform/Folders.h"
#include "platform/Process.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace Process = platform::Process;
using platform::Console;
using platform::Folders;
using platform::SearchPathDirectory;
using platform::SearchPathDomain;

TEST(Process, NamesThreadsApart) {
  EXPECT_TRUE(Process::isMainThread());
  EXPECT_EQ(Process::threadName(), "");
  EXPECT_GE(Process::processorCount(), 1U);
  const std::uint32_t main = Process::threadIdentifier();
  EXPECT_EQ(main, static_cast<std::uint32_t>(getpid()));
  std::thread([&] {
    EXPECT_NE(Process::threadIdentifier(), main);
    EXPECT_FALSE(Process::isMainThread());
    Process::setThreadName("a name of more than 15 bytes");
    EXPECT_EQ(Process::threadName(), "a name of more than 15 bytes");
  }).join();
  EXPECT_EQ(Process::threadName(), "");
  const auto forked = [] {
    _exit(Process::threadIdentifier() == static_cast<std::uint32_t>(getpid()) ? 0 : 1);
  };
  EXPECT_EXIT(forked(), testing::ExitedWithCode(0), "");
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
  char folder[8];
  if (!getcwd(folder, sizeof folder) || std::strcmp(folder, "/") != 0) return 5;
  std::string environment;
  for (char** variable = environ; *variable; ++variable) environment.append(*variable) += ';';
  if (environment != "PATH=/usr/sbin:/usr/bin:/sbin:/bin;LANG=C;LC_ALL=C;") return 6;
  return setenv("ADDED", "1", 1) == 0 && getenv("ADDED") ? 0 : 7;
}

TEST(Process, StartsSecurelyWhateverItWasLeft) {
  EXPECT_EXIT(_exit(faultAfterSecureStart()), testing::ExitedWithCode(0), "");
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
  EXPECT_EXIT(write(), testing::ExitedWithCode(0), "");
}

std::string pathOf(SearchPathDirectory directory, SearchPathDomain domain) {
  const auto url = Folders::production().url(directory, domain);
  return url ? url->absoluteString() : url.error().localizedDescription();
}

TEST(Folders, ObeyVariablesOfOrdinaryUsersOnly) {
  constexpr auto support = SearchPathDirectory::applicationSupport;
  constexpr auto library = SearchPathDirectory::library;
  EXPECT_EQ(pathOf(support, SearchPathDomain::local), "file:///var/lib/");
  const auto check = [](uid_t real, uid_t effective, std::string expected) {
    setenv("HOME", "/trap", 1);
    setenv("XDG_DATA_HOME", "/data", 1);
    setenv("XDG_STATE_HOME", "relative", 1);
    setenv("TMPDIR", "/mine", 1);
    if (setresuid(real, effective, effective) != 0) _exit(1);
    const std::string found = pathOf(support, SearchPathDomain::user) + " " +
                              pathOf(library, SearchPathDomain::user) + " " +
                              Folders::production().temporaryDirectory().absoluteString();
    if (found != expected) std::fputs(found.c_str(), stderr);
    _exit(found == expected ? 0 : 2);
  };
  if (geteuid() != 0) {
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(pathOf(support, SearchPathDomain::user), "file:///data/");
    return;
  }
  constexpr uid_t daemon = 1;
  constexpr uid_t nobody = 54321;
  EXPECT_EXIT(check(0, 0, "file:///root/.local/share/ file:///root/.local/state/ file:///tmp/"),
              testing::ExitedWithCode(0), "");
  EXPECT_EXIT(check(daemon, daemon, "file:///data/ file:///usr/sbin/.local/state/ file:///mine/"),
              testing::ExitedWithCode(0), "");
  EXPECT_EXIT(check(0, daemon,
                    "file:///usr/sbin/.local/share/ file:///usr/sbin/.local/state/ file:///tmp/"),
              testing::ExitedWithCode(0), "");
  const std::string unknown = "getpwuid 54321: No such file or directory";
  EXPECT_EXIT(check(0, nobody, unknown + " " + unknown + " file:///tmp/"),
              testing::ExitedWithCode(0), "");
}

}  // namespace
