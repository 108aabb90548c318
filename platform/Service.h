#pragma once

#include <atomic>

namespace platform {

/// Base of a service of the operating system that a test can replace.
///
/// `S` derives from `Service<S>` and offers `static S& production()`, which returns the system's
/// own, never destroyed form. The production forms hold no switches.
///
///     FakeTasks tasks;
///     const TaskRunner::Replacement guard(tasks);   // until the end of the scope
template <class S>
class Service {
 public:
  /// The instance in force: the production form unless a replacement is alive.
  static S& current() {
    S* const replacement = replacement_.load(std::memory_order_acquire);
    return replacement ? *replacement : S::production();
  }

  /// Puts another instance in force for the length of a scope. The instance is not owned and has
  /// to outlive every use of it. For tests; scopes nest, and do not overlap between threads.
  class Replacement {
   public:
    explicit Replacement(S& instance) : previous_(replacement_.exchange(&instance)) {}
    ~Replacement() { replacement_.store(previous_); }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

   private:
    S* const previous_;
  };

  virtual ~Service() = default;
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

 protected:
  Service() = default;

 private:
  inline static std::atomic<S*> replacement_{nullptr};
};

}  // namespace platform
