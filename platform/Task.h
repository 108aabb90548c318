#pragma once

#include <string>
#include <vector>

#include "foundation/Data.h"
#include "foundation/NSException.h"
#include "platform/Service.h"

namespace platform {

/// What to run: a program by its path, with arguments passed through unchanged.
struct Task {
  std::string launchPath;              ///< absolute, or relative to the directory below
  std::vector<std::string> arguments;  ///< without the program's own name
  std::string currentDirectoryPath;    ///< empty: the caller's
};

/// Raised when a program cannot be started; the reason names it and why.
class TaskLaunchException : public foundation::NSInvalidArgumentException {
 public:
  using NSInvalidArgumentException::NSInvalidArgumentException;
};

/// Runs child processes: no shell, and only descriptors 0 to 2 reach the child, whose signal
/// dispositions and mask are the defaults. It inherits the environment.
///
/// The calls return after the child has ended, with its exit status (0 to 255), with the number of
/// the signal that ended it, or with `statusLost`. They raise TaskLaunchException when it cannot be
/// started, and leave no zombie and no descriptor behind. Thread safety: any thread.
class TaskRunner : public Service<TaskRunner> {
 public:
  /// What a call returns when the child has ended but the system kept no status, because the
  /// process ignores SIGCHLD or someone else in it waited for the child.
  static constexpr int statusLost = -1;

  static TaskRunner& production();

  /// Runs with the caller's standard streams.
  virtual int run(const Task& task) = 0;

  /// Runs with standard output and error merged into one pipe, in the order the child writes them,
  /// and replaces the content of `output` by everything up to the pipe's end, which comes when the
  /// last process that holds it has closed it: a child of the child that lives on delays it.
  virtual int runCapturingOutput(const Task& task, foundation::Data& output) = 0;
};

}  // namespace platform
