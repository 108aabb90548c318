#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/ObserverList.h"
#include "foundation/URL.h"
#include "platform/Service.h"

namespace platform {

/// One application that runs: immutable, shared.
struct RunningApplication {
  pid_t processIdentifier;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> localizedName;
};

using RunningApplicationRef = std::shared_ptr<const RunningApplication>;

/// A change of the list of running applications, with the platform's numbers for its kind.
struct RunningApplicationsChange {
  enum class Kind { setting = 1, insertion = 2, removal = 3, replacement = 4 };

  Kind kind;
  /// Ascending positions: of the new records in the list after an insertion, of the old ones in
  /// the list before a removal.
  std::vector<std::size_t> indexes;
  std::vector<RunningApplicationRef> newRecords;  ///< in the order of `indexes`
  std::vector<RunningApplicationRef> oldRecords;
};

/// The desktop's applications.
///
/// On Linux an application is a desktop entry (freedesktop.org); its identifier is the entry's file
/// name without ".desktop", with the folders above it in front ("sub-name"), its name the entry's
/// localised "Name". A process belongs to a run of an application through the scope in its
/// control-group path ("app-…-ID-PID.scope" or the like), or else by its executable, unless that is
/// a shell or an interpreter. One process stands for each run: the oldest in the scope, or the one
/// that no other process of the same executable started. Thread safety: any thread.
class Workspace : public Service<Workspace> {
 public:
  static Workspace& production();

  /// The applications that run now, oldest first.
  virtual std::vector<RunningApplicationRef> runningApplications() = 0;

  /// Tells every change of the list: a removal once a process has ended, an insertion within a
  /// second of the launch. Notifications come one at a time, on a thread of the workspace's.
  ///
  /// An observation begins with the list that `runningApplications` gave last, to whomever, so who
  /// takes the list and then observes misses nothing in between. The list that
  /// `runningApplications` gives while an observation is alive is the one that the changes told so
  /// far, or being told, lead to.
  virtual foundation::Observation observeRunningApplications(
      std::function<void(const RunningApplicationsChange&)> observer) = 0;

  /// The application that process `pid` stands for; null when it stands for none. While an
  /// observation is alive the answer is in the list, or told as launched next.
  virtual RunningApplicationRef runningApplicationWithProcessIdentifier(pid_t pid) = 0;

  /// Where the application of this identifier is installed: its desktop entry.
  virtual std::optional<foundation::URL> URLForApplicationWithBundleIdentifier(
      std::string_view identifier) = 0;
};

}  // namespace platform
