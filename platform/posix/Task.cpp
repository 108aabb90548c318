#include "platform/Task.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "foundation/Format.h"
#include "platform/FileHandle.h"
#include "platform/Queue.h"
#include "platform/posix/SystemCall.h"

namespace platform {
namespace {

constexpr std::size_t leastRead = 64 * 1024;

[[noreturn]] void raiseLaunchFailure(const Task& task, std::string_view call, int code) {
  const std::string folder =
      task.currentDirectoryPath.empty() ? "" : " in \"" + task.currentDirectoryPath + "\"";
  foundation::raise<TaskLaunchException>(foundation::format(
      "Cannot launch \"%@\"%@: %@: %s", task.launchPath, folder, call, std::strerror(code)));
}

struct Pipe {
  FileHandle readingEnd;
  FileHandle writingEnd;

  explicit Pipe(const Task& task) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) raiseLaunchFailure(task, "pipe2", errno);
    readingEnd = FileHandle(ends[0], "pipe");
    writingEnd = FileHandle(ends[1], "pipe");
  }
};

/// How the child starts: default signals, descriptors 0 to 2 alone, its working directory.
class SpawnSettings {
 public:
  /// `output` becomes standard output and error, unless it is negative.
  SpawnSettings(const Task& task, int output) {
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    if (output >= 0) {
      // Works whatever `output` is, also when 1 or 2 were closed and it is one of them: a copy
      // onto itself stays open in the child.
      require(posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO));
      require(posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO));
    }
    require(posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1));
    if (!task.currentDirectoryPath.empty()) {
      require(posix_spawn_file_actions_addchdir_np(&actions, task.currentDirectoryPath.c_str()));
    }
  }
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  /// 0, or the first error (an errno value).
  int error = 0;
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;

 private:
  void require(int result) {
    if (error == 0) error = result;
  }
};

bool holdsZeroByte(const std::string& text) { return text.find('\0') != std::string::npos; }

pid_t spawn(const Task& task, int output) {
  if (holdsZeroByte(task.launchPath) || holdsZeroByte(task.currentDirectoryPath) ||
      std::any_of(task.arguments.begin(), task.arguments.end(), holdsZeroByte)) {
    raiseLaunchFailure(task, "zero byte in an argument", EINVAL);
  }
  std::vector<char*> arguments;
  arguments.reserve(task.arguments.size() + 2);
  arguments.push_back(const_cast<char*>(task.launchPath.c_str()));
  for (const std::string& argument : task.arguments) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);

  const SpawnSettings settings(task, output);
  pid_t pid = -1;
  const int error = settings.error ? settings.error
                                   : posix_spawn(&pid, task.launchPath.c_str(), &settings.actions,
                                                 &settings.attributes, arguments.data(), environ);
  if (error != 0) raiseLaunchFailure(task, "posix_spawn", error);
  return pid;
}

/// A child that is waited for at the latest when the scope is left.
class Child {
 public:
  Child(const Task& task, int output) : pid_(spawn(task, output)) {}
  ~Child() {
    if (pid_ > 0) wait();
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  int wait() {
    const pid_t pid = std::exchange(pid_, -1);
    int status = 0;
    const pid_t waited = retryInterrupted([&] { return waitpid(pid, &status, 0); });
    if (waited == -1) return TaskRunner::statusLost;
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
  }

 private:
  pid_t pid_;
};

void readToEnd(const FileHandle& file, foundation::Data& output) {
  std::size_t length = 0;
  output.clear();
  while (true) {
    if (output.size() - length < leastRead) output.resize(2 * length + leastRead);
    const foundation::Result<std::size_t> count =
        file.read(output.data() + length, output.size() - length);
    if (!count || *count == 0) break;
    length += *count;
  }
  output.resize(length);
}

class SpawningTaskRunner final : public TaskRunner {
 public:
  int run(const Task& task) override {
    const BlockingRegion region;
    return Child(task, -1).wait();
  }

  int runCapturingOutput(const Task& task, foundation::Data& output) override {
    const BlockingRegion region;
    Pipe pipe(task);
    Child child(task, pipe.writingEnd.descriptor());
    // Closed before the child is waited for, also when the reading fails.
    const FileHandle readingEnd = std::move(pipe.readingEnd);
    pipe.writingEnd.close();
    readToEnd(readingEnd, output);
    return child.wait();
  }
};

}  // namespace

TaskRunner& TaskRunner::production() {
  static TaskRunner& runner = *new SpawningTaskRunner;
  return runner;
}

}  // namespace platform
