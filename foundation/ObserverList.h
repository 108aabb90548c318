#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace foundation {

/// Where in a change an observer is told of it.
enum class ChangePhase { willChange, didChange };

/// Keeps an observer registered; taking it down (or destroying it) ends the observation.
///
/// A call that has already begun on another thread may still be running when `stop` returns.
class [[nodiscard]] Observation {
 public:
  Observation() = default;
  explicit Observation(std::function<void()> stop) : stop_(std::move(stop)) {}
  Observation(Observation&& other) noexcept : stop_(std::exchange(other.stop_, nullptr)) {}
  Observation& operator=(Observation&& other) noexcept {
    if (this != &other) {
      stopQuietly();
      stop_ = std::exchange(other.stop_, nullptr);
    }
    return *this;
  }
  ~Observation() { stopQuietly(); }

  /// Ends the observation. Passes on what the observed object raises.
  void stop() {
    if (stop_) std::exchange(stop_, nullptr)();
  }

 private:
  // Who is observed may refuse to be left, and there is nobody to tell.
  void stopQuietly() noexcept {
    try {
      stop();
    } catch (...) {
    }
  }

  std::function<void()> stop_;
};

/// The observers of one property.
///
/// They are called on the notifying thread, in the order of registration, with no lock held, so an
/// observer may add and remove observers. Thread safety: every member may be called from any
/// thread. An `Observation` may outlive the list.
template <class... Change>
class ObserverList {
 public:
  using Observer = std::function<void(Change...)>;

  Observation add(Observer observer) {
    auto entry = std::make_shared<const Observer>(std::move(observer));
    {
      MutexLock lock(state_->mutex);
      state_->observers.push_back(entry);
    }
    return Observation([weak = std::weak_ptr<State>(state_), entry] {
      const std::shared_ptr<State> state = weak.lock();
      if (!state) return;
      MutexLock lock(state->mutex);
      std::erase(state->observers, entry);
    });
  }

  void notify(const Change&... change) const {
    std::vector<std::shared_ptr<const Observer>> observers;
    {
      MutexLock lock(state_->mutex);
      observers = state_->observers;
    }
    for (const auto& observer : observers) (*observer)(change...);
  }

  bool isEmpty() const {
    MutexLock lock(state_->mutex);
    return state_->observers.empty();
  }

 private:
  struct State {
    Mutex mutex;
    std::vector<std::shared_ptr<const Observer>> observers ZARVO_GUARDED_BY(mutex);
  };

  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace foundation
