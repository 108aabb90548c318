#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Error.h"

namespace platform {

/// What the kernel tells of processes (proc(5)). Immutable.
class ProcFileSystem {
 public:
  /// What is asked of a process's "stat" file.
  struct Status {
    char state;  ///< a letter; 'Z' and 'X' have ended
    pid_t parent;
    std::uint64_t startTime;  ///< in clock ticks since the system's start

    bool hasEnded() const { return state == 'Z' || state == 'X'; }
  };

  /// `root` is where the file system is mounted.
  explicit ProcFileSystem(std::string root = "/proc") : root_(std::move(root)) {}

  /// Every process, in the kernel's order. There is always at least one, the caller; finding none
  /// is an error, as not being able to read is.
  foundation::Result<std::vector<pid_t>> processIdentifiers() const;

  /// Nothing when the process is gone.
  std::optional<Status> status(pid_t pid) const;

  /// The text of the process's control-group memberships, one a line; empty when unknown.
  std::string controlGroups(pid_t pid) const;

  /// The path of the program that the process runs, without the mark that it was deleted since;
  /// empty for a kernel thread, for one that is gone, and for one of another user's.
  std::string executable(pid_t pid) const;

  /// Reads the text of a "stat" file. The program's name in it may hold blanks and parentheses.
  static std::optional<Status> parseStatus(std::string_view text);

 private:
  std::string path(pid_t pid, std::string_view file) const;

  std::string root_;
};

}  // namespace platform
