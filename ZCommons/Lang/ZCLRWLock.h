#pragma once

#include <memory>
#include <optional>
#include <string>

#include "foundation/NSException.h"
#include "foundation/NullableText.h"

/// Invalid use of a `ZCLRWLock`, or a lock that the system refuses; the reason says which.
class ZCRWLockException : public foundation::NSException {
 public:
  explicit ZCRWLockException(const std::string& reason);
};

/// A POSIX read/write lock (pthread_rwlock): many readers, or one writer.
///
/// Whoever locked unlocks, on the same thread. The lock may be released while it is held: what the
/// system keeps for it is destroyed later, about once a second being tried on the main queue, which
/// somebody has to run for that. Who may outlive the lock while holding it takes a `Hold`.
///
/// Works with `std::unique_lock` and `std::shared_lock`. Thread safety: any thread, every member
/// but the name.
///
///     ZCLRWLock lock;
///     {
///       std::shared_lock reading(lock);
///       ...
///     }
class ZCLRWLock {
 public:
  /// Raises ZCRWLockException when the system makes no lock.
  ZCLRWLock();
  ~ZCLRWLock();
  ZCLRWLock(const ZCLRWLock&) = delete;
  ZCLRWLock& operator=(const ZCLRWLock&) = delete;

  /// Wait until the lock is held for reading, or for writing. Raise ZCRWLockException when the
  /// system refuses: a thread that holds the lock for writing already, or too many readers.
  void readLock();
  void writeLock();

  /// Take the lock if that takes no waiting; false when it is busy. Every other refusal that has no
  /// exception of its own counts as taken: callers rely on the answer being true.
  bool tryReadLock();
  bool tryWriteLock();

  /// Gives up what the thread holds. Raises ZCRWLockException when it holds nothing.
  void unlock();

  /// The names that locks of all kinds have.
  void lock() { writeLock(); }
  bool tryLock() { return tryWriteLock(); }

  /// The names that the standard library's guards use.
  bool try_lock() { return tryWriteLock(); }
  void lock_shared() { readLock(); }
  bool try_lock_shared() { return tryReadLock(); }
  void unlock_shared() { unlock(); }

  /// Holds the lock for the length of a scope, also beyond the life of the `ZCLRWLock` itself. To
  /// be destroyed on the thread that made it.
  class Hold;

  /// As `readLock` and `writeLock`, with the unlocking in the result.
  Hold readHold();
  Hold writeHold();

  /// A name for diagnostics; none at first.
  const std::optional<std::string>& name() const { return name_; }
  void setName(foundation::NullableText name);

  /// Raises ZCRWLockException with the reason that `result`, a POSIX error number, stands for:
  /// EPERM, EDEADLK, ENOMEM, EINVAL or EAGAIN. Returns for 0 and every other number.
  static void handleResult(int result) {
    if (result != 0) handleFailure(result);
  }

  /// Destroys the locks that were released while held and are free now, and sees to the others
  /// being tried again.
  static void destroyOldLocks();

  /// Has `destroyOldLocks` run on the main queue a second from now, unless it is going to already.
  static void scheduleDestroy();

 private:
  class Lock;
  class OldLocks;

  explicit ZCLRWLock(std::shared_ptr<Lock> lock);

  static void handleFailure(int result);

  std::shared_ptr<Lock> lock_;  // shared with the holds
  std::optional<std::string> name_;
};

class ZCLRWLock::Hold {
 public:
  Hold(Hold&&) noexcept = default;
  Hold& operator=(Hold&&) = delete;
  ~Hold();

 private:
  friend class ZCLRWLock;
  explicit Hold(std::shared_ptr<Lock> lock);

  std::shared_ptr<Lock> lock_;  // null once moved from
};
