#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/Workspace.h"

namespace support {

inline platform::RunningApplicationRef application(
    pid_t pid, std::optional<std::string> identifier = std::nullopt,
    std::optional<std::string> name = std::nullopt) {
  return std::make_shared<const platform::RunningApplication>(
      platform::RunningApplication{pid, std::move(identifier), std::move(name)});
}

/// A workspace whose applications a test sets.
class FakeWorkspace : public platform::Workspace {
 public:
  using Change = platform::RunningApplicationsChange;

  std::vector<platform::RunningApplicationRef> runningApplications() override {
    const foundation::MutexLock lock(mutex_);
    return list_;
  }

  foundation::Observation observeRunningApplications(
      std::function<void(const Change&)> observer) override {
    auto kept = std::make_shared<foundation::Observation>(observers_.add(std::move(observer)));
    return foundation::Observation([kept, this] {
      kept->stop();
      if (refusesToBeLeft) throw std::runtime_error("not observed");
    });
  }

  platform::RunningApplicationRef runningApplicationWithProcessIdentifier(pid_t pid) override {
    const foundation::MutexLock lock(mutex_);
    ++questions_;
    for (const auto& app : list_) {
      if (app->processIdentifier == pid) return app;
    }
    return nullptr;
  }

  std::optional<foundation::URL> URLForApplicationWithBundleIdentifier(std::string_view) override {
    return std::nullopt;
  }

  void setList(std::vector<platform::RunningApplicationRef> list) {
    const foundation::MutexLock lock(mutex_);
    list_ = std::move(list);
  }

  void tell(const Change& change) { observers_.notify(change); }
  bool isObserved() const { return !observers_.isEmpty(); }

  /// How often an application was asked for.
  int questions() const {
    const foundation::MutexLock lock(mutex_);
    return questions_;
  }

  bool refusesToBeLeft = false;

 private:
  foundation::ObserverList<const Change&> observers_;
  mutable foundation::Mutex mutex_;
  std::vector<platform::RunningApplicationRef> list_ ZARVO_GUARDED_BY(mutex_);
  int questions_ ZARVO_GUARDED_BY(mutex_) = 0;
};

}  // namespace support
