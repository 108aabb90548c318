#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/Workspace.h"
#include "platform/linux/ApplicationCatalog.h"
#include "platform/linux/ProcFileSystem.h"

namespace platform {

/// A process for as long as it lives: its number alone is used again. Ordered by age.
struct ProcessIdentity {
  std::uint64_t startTime;
  pid_t pid;

  friend bool operator==(const ProcessIdentity&, const ProcessIdentity&) = default;
  friend bool operator<(const ProcessIdentity& a, const ProcessIdentity& b) {
    return std::tie(a.startTime, a.pid) < std::tie(b.startTime, b.pid);
  }
};

/// An application's process.
struct ApplicationProcess {
  ProcessIdentity identity;
  RunningApplicationRef record;
};

/// Finds the processes that are applications.
///
/// All processes in an application's scope are one run of it, and the oldest of them stands for it.
/// Outside a scope, the processes of an application's program are one run with those that they
/// start, and the first stands for it. Thread safety: any thread.
class ApplicationProcesses {
 public:
  ApplicationProcesses(ApplicationCatalog::Places places, ProcFileSystem processes)
      : catalog_(std::move(places)), processes_(std::move(processes)) {}

  /// All of them, oldest first.
  std::vector<ApplicationProcess> all();

  /// The one that `pid` is; nothing when it is none, or another process stands for the run.
  std::optional<ApplicationProcess> withProcessIdentifier(pid_t pid);

  ApplicationCatalog& catalog() { return catalog_; }

 private:
  /// A process that belongs to a run of an application.
  struct Member {
    ProcessIdentity identity;
    pid_t parent;
    const Application* application;
    std::string scope;  ///< the control group's path; empty when it is known by its program
  };

  using Members = std::map<pid_t, Member>;
  using Contents = ApplicationCatalog::Contents;

  std::optional<Member> member(pid_t pid, const Contents& contents) const;
  Members members(const Contents& contents) const;
  static std::vector<const Member*> firstOfEachRun(const Members& members);
  static bool sameRun(const Member& a, const Member& b);
  static ApplicationProcess process(const Member& member);

  ApplicationCatalog catalog_;
  const ProcFileSystem processes_;
};

}  // namespace platform
