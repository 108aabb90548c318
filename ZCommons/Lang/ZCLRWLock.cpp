#include "ZCommons/Lang/ZCLRWLock.h"

#include <errno.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/Queue.h"
#include "platform/Timer.h"

ZCRWLockException::ZCRWLockException(const std::string& reason)
    : NSException("ZCRWLockException", reason) {}

namespace {

/// What a thread holds, once for each time. Trivial, so that looking at it costs nothing; a thread
/// that holds many gets storage, and gives it back with the last.
struct Held {
  static constexpr std::size_t few = 8;

  void push(const void* lock) {
    if (count == capacity) grow();
    locks()[count++] = lock;
  }

  bool remove(const void* lock) {
    const void** const begin = locks();
    std::size_t i = count;
    while (i > 0 && begin[i - 1] != lock) --i;
    if (i == 0) return false;
    begin[i - 1] = begin[--count];
    if (count == 0 && many) shrink();
    return true;
  }

 private:
  const void** locks() { return many ? many : fewLocks; }

  void grow() {
    const auto larger = new const void*[capacity * 2];
    std::copy_n(locks(), count, larger);
    delete[] many;
    many = larger;
    capacity *= 2;
  }

  void shrink() {
    delete[] many;
    many = nullptr;
    capacity = few;
  }

  std::size_t count = 0;
  std::size_t capacity = few;
  const void** many = nullptr;
  const void* fewLocks[few] = {};
};

constinit thread_local Held held;

}  // namespace

/// The system's lock, and who holds it: the library says neither whether a lock is held when it is
/// destroyed, nor whether a thread unlocks what it does not hold.
class ZCLRWLock::Lock {
 public:
  Lock() {
    if (pthread_rwlockattr_init(&attributes_) != 0) {
      foundation::raise<ZCRWLockException>("Can't initialize rwlockattr struct.");
    }
    if (pthread_rwlock_init(&lock_, &attributes_) != 0) {
      pthread_rwlockattr_destroy(&attributes_);
      foundation::raise<ZCRWLockException>("Can't initialize a read/write lock.");
    }
  }

  ~Lock() {
    pthread_rwlock_destroy(&lock_);
    pthread_rwlockattr_destroy(&attributes_);
  }

  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  int lockForReading() { return acquire<pthread_rwlock_tryrdlock, pthread_rwlock_rdlock>(); }
  int lockForWriting() { return acquire<pthread_rwlock_trywrlock, pthread_rwlock_wrlock>(); }
  int tryLockForReading() { return taken(pthread_rwlock_tryrdlock(&lock_)); }
  int tryLockForWriting() { return taken(pthread_rwlock_trywrlock(&lock_)); }

  int unlock() { return held.remove(this) ? pthread_rwlock_unlock(&lock_) : EPERM; }

  bool isBusy() {
    if (pthread_rwlock_trywrlock(&lock_) != 0) return true;
    pthread_rwlock_unlock(&lock_);
    return false;
  }

 private:
  template <auto attempt, auto wait>
  int acquire() {
    int result = attempt(&lock_);
    if (result == EBUSY) {
      const platform::BlockingRegion waiting;
      result = wait(&lock_);
    }
    return taken(result);
  }

  int taken(int result) {
    if (result == 0) held.push(this);
    return result;
  }

  pthread_rwlockattr_t attributes_;
  pthread_rwlock_t lock_;
};

/// The locks that were released while held. Never destroyed.
class ZCLRWLock::OldLocks {
 public:
  static OldLocks& shared() {
    static OldLocks& locks = *new OldLocks;
    return locks;
  }

  void add(std::shared_ptr<Lock> busy) {
    foundation::MutexLock lock(mutex_);
    locks_.push_back(std::unique_ptr<ZCLRWLock>(new ZCLRWLock(std::move(busy))));
    budget_ += budgetOfALock;
  }

  void destroy() {
    std::vector<std::unique_ptr<ZCLRWLock>> locks;
    {
      foundation::MutexLock lock(mutex_);
      if (budget_ == 0 || locks_.empty()) {
        budget_ = 0;
        return;
      }
      locks.swap(locks_);
    }
    locks.clear();  // those that are still held come back
    if (--budget_ != 0) scheduleDestroy();
  }

  // One run at a time: what is still held when it comes asks for the next.
  void schedule() {
    if (scheduled_.exchange(true)) return;
    platform::after(1, platform::Queue::mainQueue(), [this] {
      scheduled_ = false;
      destroyOldLocks();
    });
  }

 private:
  static constexpr unsigned budgetOfALock = 10;

  foundation::Mutex mutex_;
  std::vector<std::unique_ptr<ZCLRWLock>> locks_ ZARVO_GUARDED_BY(mutex_);
  std::atomic<unsigned> budget_{0};  // of runs that follow; every lock that comes in renews it
  std::atomic<bool> scheduled_{false};
};

ZCLRWLock::ZCLRWLock() : lock_(std::make_shared<Lock>()) {}

ZCLRWLock::ZCLRWLock(std::shared_ptr<Lock> lock) : lock_(std::move(lock)) {}

ZCLRWLock::~ZCLRWLock() {
  if (!lock_->isBusy()) return;
  OldLocks::shared().add(std::move(lock_));
  scheduleDestroy();
}

void ZCLRWLock::readLock() { handleResult(lock_->lockForReading()); }

void ZCLRWLock::writeLock() { handleResult(lock_->lockForWriting()); }

bool ZCLRWLock::tryReadLock() {
  const int result = lock_->tryLockForReading();
  if (result == EBUSY) return false;
  handleResult(result);
  return true;
}

bool ZCLRWLock::tryWriteLock() {
  const int result = lock_->tryLockForWriting();
  if (result == EBUSY) return false;
  handleResult(result);
  return true;
}

void ZCLRWLock::unlock() { handleResult(lock_->unlock()); }

ZCLRWLock::Hold ZCLRWLock::readHold() {
  readLock();
  return Hold(lock_);
}

ZCLRWLock::Hold ZCLRWLock::writeHold() {
  writeLock();
  return Hold(lock_);
}

ZCLRWLock::Hold::Hold(std::shared_ptr<Lock> lock) : lock_(std::move(lock)) {}

ZCLRWLock::Hold::~Hold() {
  if (lock_) lock_->unlock();
}

void ZCLRWLock::setName(foundation::NullableText name) {
  name_ = name.isNull() ? std::nullopt : std::optional(name.string());
}

void ZCLRWLock::handleFailure(int result) {
  using foundation::raise;
  switch (result) {
    case EPERM:
      raise<ZCRWLockException>("The current thread does not own the read/write lock");
    case EDEADLK:
      raise<ZCRWLockException>("The current thread already owns rwlock for writing.");
    case ENOMEM:
      raise<ZCRWLockException>(
          "Insufficient memory exists to initialize the lock (applies to statically initialized "
          "locks only).");
    case EINVAL:
      raise<ZCRWLockException>("The value specified by rwlock is invalid.");
    case EAGAIN:
      raise<ZCRWLockException>(
          "The lock could not be acquired, because the maximum number of read locks against lock "
          "has been exceeded.");
    default:
      return;
  }
}

void ZCLRWLock::destroyOldLocks() { OldLocks::shared().destroy(); }

void ZCLRWLock::scheduleDestroy() { OldLocks::shared().schedule(); }
