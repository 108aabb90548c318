#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/FileSystem.h"
#include "platform/Task.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using platform::Task;
using platform::TaskRunner;

std::size_t openDescriptors() {
  return platform::FileSystem::contentsOfDirectory("/proc/self/fd")->size();
}

Task script(const std::string& text) { return {"/bin/sh", {"-c", text}, ""}; }

std::string outputOf(const Task& task, int expectedStatus = 0) {
  foundation::Data output;
  EXPECT_EQ(TaskRunner::production().runCapturingOutput(task, output), expectedStatus);
  return std::string(foundation::textOf(output));
}

/// Runs `body` in a forked process, whose exit status is what `body` returns.
int inChild(const std::function<int()>& body) {
  const pid_t pid = fork();
  if (pid == 0) _exit(body());
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + status;
}

/// Whatever a case does: no zombie and no open descriptor is left.
class TaskRunnerTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(openDescriptors(), before_);
  }

 private:
  const std::size_t before_ = openDescriptors();
};

TEST_F(TaskRunnerTest, GivesOutputAndStatus) {
  const struct {
    const char* script;
    int status;
    std::string output;
  } cases[] = {
      {"printf out; printf err >&2; printf out", 0, "outerrout"},
      {"exit 7", 7, ""},
      {"printf before; kill -TERM $$", SIGTERM, "before"},
      {"exec >&- 2>&-; exit 3", 3, ""},
      {"(sleep 0.2; printf late) & printf early", 0, "earlylate"},
      {"head -c 3000000 /dev/zero | tr '\\000' x", 0, std::string(3000000, 'x')},
      {"test -e /proc/self/fd/77 || printf closed", 0, "closed"},
      // Of the higher signals the C library keeps two ignored for itself.
      {"exec grep -cE 'Sig(Blk|Ign):.*[1-9a-f].{0,6}$' /proc/self/status", 1, "0\n"},
  };
  dup2(STDERR_FILENO, 77);
  signal(SIGUSR1, SIG_IGN);
  sigset_t blocked;
  sigemptyset(&blocked);
  for (const int number : {SIGTERM, SIGCHLD}) sigaddset(&blocked, number);
  sigprocmask(SIG_BLOCK, &blocked, nullptr);
  for (const auto& c : cases) EXPECT_EQ(outputOf(script(c.script), c.status), c.output) << c.script;
  EXPECT_EQ(TaskRunner::production().run(script("exit 9")), 9);
  sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
  close(77);
}

TEST_F(TaskRunnerTest, PassesArgumentsThroughAndRunsInTheDirectory) {
  EXPECT_EQ(outputOf({"/usr/bin/printf", {"%s|", "a b", "", "$HOME;\"*"}, ""}), "a b||$HOME;\"*|");
  EXPECT_EQ(outputOf({"/bin/pwd", {}, "/usr/bin"}), "/usr/bin\n");
}

TEST_F(TaskRunnerTest, RaisesWhatCannotBeStarted) {
  const support::TemporaryFolder folder;
  const std::string text = folder.path("text");
  ASSERT_TRUE(platform::FileSystem::writeFileAtomically(text, foundation::dataOf("exit 0\n")));
  const std::string noInterpreter = folder.path("script");
  ASSERT_TRUE(platform::FileSystem::writeFileAtomically(noInterpreter, foundation::dataOf("ls\n")));
  chmod(noInterpreter.c_str(), 0755);
  const struct {
    Task task;
    const char* reason;
  } cases[] = {
      {{"/nonexistent", {}, ""}, "Cannot launch \"/nonexistent\": posix_spawn: No such file"},
      {{"", {}, ""}, "No such file"},
      {{"/usr", {}, ""}, "Permission denied"},
      {{text, {}, ""}, "Permission denied"},
      {{noInterpreter, {}, ""}, "Exec format error"},
      {{"/bin/true", {}, "/nonexistent"}, "\"/bin/true\" in \"/nonexistent\""},
      {{"/bin/true", {std::string("a\0b", 3)}, ""}, "zero byte"},
  };
  foundation::Data output;
  for (const auto& c : cases) {
    for (const bool captures : {false, true}) {
      try {
        captures ? TaskRunner::production().runCapturingOutput(c.task, output)
                 : TaskRunner::production().run(c.task);
        ADD_FAILURE() << c.reason;
      } catch (const platform::TaskLaunchException& exception) {
        EXPECT_THAT(exception.reason(), testing::HasSubstr(c.reason));
      }
    }
  }
}

TEST_F(TaskRunnerTest, WorksFromAProcessInABadState) {
  EXPECT_EQ(inChild([] {
              for (const int descriptor : {0, 1, 2}) close(descriptor);
              foundation::Data output;
              TaskRunner::production().runCapturingOutput(script("echo a; echo b >&2"), output);
              return foundation::textOf(output) == "a\nb\n" ? 0 : 1;
            }),
            0);
  EXPECT_EQ(inChild([] {
              signal(SIGCHLD, SIG_IGN);
              return TaskRunner::production().run(script("exit 0")) == TaskRunner::statusLost ? 0
                                                                                              : 1;
            }),
            0);
}

TEST_F(TaskRunnerTest, KeepsTasksOfSeveralThreadsApart) {
  const auto runMany = [](const std::string& text) {
    for (int i = 0; i < 50; ++i) EXPECT_EQ(outputOf({"/usr/bin/printf", {text}, ""}), text);
  };
  std::thread other(runMany, "other");
  runMany("one");
  other.join();
}

}  // namespace
