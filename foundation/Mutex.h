#pragma once

#include <condition_variable>
#include <mutex>

#include "foundation/ThreadSafety.h"

namespace foundation {

/// A `std::mutex` that clang's thread-safety analysis knows.
class ZARVO_CAPABILITY("mutex") Mutex {
 public:
  void lock() ZARVO_ACQUIRE() { mutex_.lock(); }
  void unlock() ZARVO_RELEASE() { mutex_.unlock(); }
  bool try_lock() ZARVO_TRY_ACQUIRE(true) { return mutex_.try_lock(); }

 private:
  friend class Condition;
  std::mutex mutex_;
};

/// A `std::recursive_mutex` with a name for debuggers, that clang's thread-safety analysis knows.
class ZARVO_CAPABILITY("mutex") RecursiveMutex {
 public:
  /// The name is not copied.
  explicit RecursiveMutex(const char* name = "") : name_(name) {}

  const char* name() const { return name_; }
  void lock() ZARVO_ACQUIRE() { mutex_.lock(); }
  void unlock() ZARVO_RELEASE() { mutex_.unlock(); }

 private:
  const char* const name_;
  std::recursive_mutex mutex_;
};

/// Holds a `Mutex` for the length of a scope.
class ZARVO_SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) ZARVO_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() ZARVO_RELEASE() { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

/// A condition variable for a `Mutex`. Wakes without cause happen: wait in a loop.
class Condition {
 public:
  void wait(Mutex& mutex) ZARVO_REQUIRES(mutex) {
    std::unique_lock<std::mutex> lock(mutex.mutex_, std::adopt_lock);
    condition_.wait(lock);
    lock.release();
  }

  /// Waits no longer than `duration`; returns false when that much time has passed.
  template <class Duration>
  bool waitFor(Mutex& mutex, Duration duration) ZARVO_REQUIRES(mutex) {
    std::unique_lock<std::mutex> lock(mutex.mutex_, std::adopt_lock);
    const bool notified = condition_.wait_for(lock, duration) == std::cv_status::no_timeout;
    lock.release();
    return notified;
  }

  void notifyOne() { condition_.notify_one(); }
  void notifyAll() { condition_.notify_all(); }

 private:
  std::condition_variable condition_;
};

}  // namespace foundation
