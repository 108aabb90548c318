#pragma once

#include <atomic>

namespace foundation {

/// Base of objects that a program keeps a list of from its start to its end: classes and the like
/// that announce themselves by a static object.
///
///     class Plugin : public Registered<Plugin> {
///       explicit Plugin(…) { registerInstance(); }
///     };
///     for (const Plugin* p = Plugin::last(); p; p = p->previous()) …
///
/// The list is there before any static object is made. Thread safety: any thread, without a lock.
template <class T>
class Registered {
 public:
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;

  /// The one registered last, and the one registered before this; null at the end.
  static const T* last() { return last_.load(std::memory_order_acquire); }
  const T* previous() const { return previous_; }

 protected:
  Registered() = default;
  ~Registered() = default;

  /// Puts this object, complete from here on, into the list.
  void registerInstance() {
    previous_ = last_.load(std::memory_order_relaxed);
    while (!last_.compare_exchange_weak(previous_, static_cast<const T*>(this),
                                        std::memory_order_acq_rel)) {
    }
  }

 private:
  static constinit inline std::atomic<const T*> last_{nullptr};

  const T* previous_ = nullptr;
};

}  // namespace foundation
