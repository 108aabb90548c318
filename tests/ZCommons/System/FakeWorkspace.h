#pragma once

#include <atomic>
#include <stdexcept>
#include <utility>

#include "platform/Workspace.h"

namespace support {

inline platform::RunningApplicationRef application(
    pid_t pid, std::optional<std::string> identifier = std::nullopt,
    std::optional<std::string> name = std::nullopt) {
  return std::make_shared<const platform::RunningApplication>(
      platform::RunningApplication{pid, std::move(identifier), std::move(name)});
}

/// A workspace whose applications a test sets, while no other thread asks.
struct FakeWorkspace : platform::Workspace {
  using Change = platform::RunningApplicationsChange;

  std::vector<platform::RunningApplicationRef> runningApplications() override { return list; }

  foundation::Observation observeRunningApplications(
      std::function<void(const Change&)> observer) override {
    auto kept = std::make_shared<foundation::Observation>(observers.add(std::move(observer)));
    return foundation::Observation([kept, this] {
      kept->stop();
      if (refusesToBeLeft) throw std::runtime_error("not observed");
    });
  }

  platform::RunningApplicationRef runningApplicationWithProcessIdentifier(pid_t pid) override {
    ++questions;
    for (const auto& app : list) {
      if (app->processIdentifier == pid) return app;
    }
    return nullptr;
  }

  std::optional<foundation::URL> URLForApplicationWithBundleIdentifier(std::string_view) override {
    return std::nullopt;
  }

  std::vector<platform::RunningApplicationRef> list;
  std::atomic<int> questions{0};  ///< how often an application was asked for
  foundation::ObserverList<const Change&> observers;
  bool refusesToBeLeft = false;
};

}  // namespace support
