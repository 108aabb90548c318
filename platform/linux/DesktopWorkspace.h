#pragma once

#include <memory>

#include "platform/Workspace.h"
#include "platform/linux/ApplicationCatalog.h"
#include "platform/linux/ProcFileSystem.h"

namespace platform {

/// The workspace over desktop entries and the kernel's process files.
///
/// While observed, it looks through the processes in short intervals of the clock that was in force
/// when the observation began, and at once when one of the applications ends.
class DesktopWorkspace final : public Workspace {
 public:
  explicit DesktopWorkspace(ApplicationCatalog::Places places,
                            ProcFileSystem processes = ProcFileSystem());
  ~DesktopWorkspace() override;

  std::vector<RunningApplicationRef> runningApplications() override;
  foundation::Observation observeRunningApplications(
      std::function<void(const RunningApplicationsChange&)> observer) override;
  RunningApplicationRef runningApplicationWithProcessIdentifier(pid_t pid) override;
  std::optional<foundation::URL> URLForApplicationWithBundleIdentifier(
      std::string_view identifier) override;

 private:
  class Tracker;
  const std::shared_ptr<Tracker> tracker_;
};

}  // namespace platform
