#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

Task script(const std::string& text) { return {"/bin/sh", {"-c", text}, ""}; }

std::string outputOf(const Task& task, int expectedStatus = 0) {
  foundation::Data output;
  EXPECT_EQ(TaskRunner::production().runCapturingOutput(task, output), expectedStatus);
  return std::string(foundation::textOf(output));
}

/// Whatever a case does: no zombie and no open descriptor is left.
class TaskRunnerTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(*platform::FileSystem::contentsOfDirectory("/proc/self/fd"), openBefore_);
  }

  const std::vector<std::string> openBefore_ =
      *platform::FileSystem::contentsOfDirectory("/proc/self/fd");
};

TEST_F(TaskRunnerTest, GivesOutputAndStatus) {
  const struct {
    Task task;
    int status;
    std::string output;
  } cases[] = {
      {script("printf out; printf err >&2; printf out"), 0, "outerrout"},
      {script("printf before; kill -TERM $$"), SIGTERM, "before"},
      {script("exec >&- 2>&-; exit 3"), 3, ""},
      {script("(sleep 0.2; printf late) & printf early"), 0, "earlylate"},
      {script("head -c 3000000 /dev/zero | tr '\\000' x"), 0, std::string(3000000, 'x')},
      {script("test -e /proc/self/fd/77 || printf closed"), 0, "closed"},
      // Of the higher signals the C library keeps two ignored for itself.
      {script("exec grep -cE 'Sig(Blk|Ign):.*[1-9a-f].{0,6}$' /proc/self/status"), 1, "0\n"},
      {{"/usr/bin/printf", {"%s|", "a b", "", "$HOME;\"*"}, ""}, 0, "a b||$HOME;\"*|"},
      {{"/bin/pwd", {}, "/usr/bin"}, 0, "/usr/bin\n"},
  };
  dup2(STDERR_FILENO, 77);
  signal(SIGUSR1, SIG_IGN);
  sigset_t blocked;
  sigfillset(&blocked);
  sigprocmask(SIG_BLOCK, &blocked, nullptr);
  for (const auto& c : cases) {
    EXPECT_EQ(outputOf(c.task, c.status), c.output) << testing::PrintToString(c.task.arguments);
  }
  EXPECT_EQ(TaskRunner::production().run(script("exit 9")), 9);
  sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
  close(77);
}

TEST_F(TaskRunnerTest, RaisesWhatCannotBeStarted) {
  const support::TemporaryFolder folder;
  const std::string noInterpreter = folder.path("script");
  ASSERT_TRUE(platform::FileSystem::writeFileAtomically(noInterpreter, foundation::dataOf("ls\n")));
  chmod(noInterpreter.c_str(), 0755);
  const struct {
    Task task;
    const char* reason;
  } cases[] = {
      {{"/nonexistent", {}, ""}, "Cannot launch \"/nonexistent\": posix_spawn: No such file"},
      {{"/usr", {}, ""}, "Permission denied"},
      {{"/etc/passwd", {}, ""}, "Permission denied"},
      {{noInterpreter, {}, ""}, "Exec format error"},
      {{"/bin/true", {}, "/nonexistent"}, "\"/bin/true\" in \"/nonexistent\""},
      {{"/bin/true", {std::string("a\0b", 3)}, ""}, "zero byte"},
  };
  for (const auto& c : cases) {
    const auto fails =
        testing::ThrowsMessage<platform::TaskLaunchException>(testing::HasSubstr(c.reason));
    EXPECT_THAT([&] { TaskRunner::production().run(c.task); }, fails);
    EXPECT_THAT([&] { outputOf(c.task); }, fails);
  }
}

TEST_F(TaskRunnerTest, WorksFromAProcessInABadState) {
  const auto runWithoutStreams = [] {
    for (const int descriptor : {0, 1, 2}) close(descriptor);
    _exit(outputOf(script("echo a; echo b >&2")) == "a\nb\n" ? 0 : 1);
  };
  EXPECT_EXIT(runWithoutStreams(), testing::ExitedWithCode(0), "");
  const auto runWithChildrenIgnored = [] {
    signal(SIGCHLD, SIG_IGN);
    _exit(TaskRunner::production().run(script("exit 0")) == TaskRunner::statusLost ? 0 : 1);
  };
  EXPECT_EXIT(runWithChildrenIgnored(), testing::ExitedWithCode(0), "");
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
