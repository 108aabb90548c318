#include <errno.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ZCommons/Lang/ZCLGcdRWLock.h"
#include "ZCommons/Lang/ZCLRWLock.h"
#include "platform/Queue.h"
#include "platform/Semaphore.h"
#include "platform/SimulatedClock.h"

using platform::MainQueue::drain;

namespace {

template <class F>
auto elsewhere(F function) {
  decltype(function()) answer;
  std::thread([&] { answer = function(); }).join();
  return answer;
}

/// Counts what is set on it.
class CountingClock : public platform::SimulatedClock {
 public:
  CountingClock() : SimulatedClock(foundation::Date()) {}

  std::uint64_t set(const std::shared_ptr<platform::Alarm>& alarm, Hand hand, std::int64_t deadline,
                    std::int64_t interval, std::int64_t leeway) override {
    ++settings;
    return SimulatedClock::set(alarm, hand, deadline, interval, leeway);
  }

  int settings = 0;
};

std::string reasonOf(const std::function<void()>& function) {
  try {
    function();
  } catch (const ZCRWLockException& exception) {
    EXPECT_EQ(exception.name(), "ZCRWLockException");
    return exception.reason();
  }
  return "";
}

}  // namespace

TEST(ZCLRWLock, LetsManyReadOrOneWrite) {
  ZCLRWLock lock;
  const auto canRead = [&] {
    const std::shared_lock attempt(lock, std::try_to_lock);
    return attempt.owns_lock();
  };
  const auto canWrite = [&] {
    const std::unique_lock attempt(lock, std::try_to_lock);
    return attempt.owns_lock();
  };
  {
    const std::shared_lock reading(lock);
    EXPECT_TRUE(elsewhere(canRead));
    EXPECT_FALSE(elsewhere(canWrite));
  }
  {
    const std::unique_lock writing(lock);
    EXPECT_FALSE(elsewhere(canRead));
    EXPECT_FALSE(elsewhere(canWrite));
    EXPECT_FALSE(lock.tryLock());
  }
  EXPECT_TRUE(elsewhere(canWrite));
}

TEST(ZCLRWLock, TellsMisuseByItsReason) {
  const std::string notOwned = "The current thread does not own the read/write lock";
  ZCLRWLock lock;
  EXPECT_EQ(reasonOf([&] { lock.unlock(); }), notOwned);
  lock.readLock();
  EXPECT_EQ(elsewhere([&] { return reasonOf([&] { lock.unlock(); }); }), notOwned);
  lock.readLock();
  lock.unlock();
  lock.unlock();
  EXPECT_EQ(reasonOf([&] { lock.unlock(); }), notOwned);
  lock.writeLock();
  for (const auto relock : {&ZCLRWLock::writeLock, &ZCLRWLock::readLock}) {
    EXPECT_EQ(reasonOf([&] { (lock.*relock)(); }),
              "The current thread already owns rwlock for writing.");
  }
  lock.unlock();
}

TEST(ZCLRWLock, MapsErrorsByTheirMeaning) {
  const struct {
    int result;
    const char* reason;
  } rows[] = {
      {0, ""},
      {EBUSY, ""},
      {EPERM, "The current thread does not own the read/write lock"},
      {EDEADLK, "The current thread already owns rwlock for writing."},
      {ENOMEM,
       "Insufficient memory exists to initialize the lock (applies to statically initialized locks "
       "only)."},
      {EINVAL, "The value specified by rwlock is invalid."},
      {EAGAIN,
       "The lock could not be acquired, because the maximum number of read locks against lock has "
       "been exceeded."},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(reasonOf([&] { ZCLRWLock::handleResult(row.result); }), row.reason) << row.result;
  }
}

// The address sanitizer sees what is destroyed too early; what never is, is tried forever.
TEST(ZCLRWLock, ReleasedWhileHeldIsDestroyedOnceItIsFree) {
  CountingClock clock;
  const platform::Clock::Replacement replacement(clock);
  auto lock = std::make_unique<ZCLRWLock>();
  platform::Semaphore held(0);
  platform::Semaphore release(0);
  std::thread holder([&] {
    const auto hold = lock->writeHold();
    held.signal();
    release.wait();
  });
  held.wait();
  lock.reset();
  EXPECT_EQ(clock.settings, 1);
  const auto runsSetByOne = [&] {
    clock.settings = 0;
    clock.advance(1);
    drain();
    return clock.settings;
  };
  for (int i = 0; i < 3; ++i) EXPECT_EQ(runsSetByOne(), 1);
  release.signal();
  holder.join();
  EXPECT_EQ(runsSetByOne(), 1);  // destroys the lock
  EXPECT_EQ(runsSetByOne(), 0);  // finds nothing, and is the last
}

TEST(ZCLRWLock, KeepsReadersFromWritersUnderLoad) {
  ZCLRWLock lock;
  long first = 0;
  long second = 0;
  std::atomic<int> torn{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 2000; ++i) {
        if (i % 4 == t) {
          const std::unique_lock writing(lock);
          ++first;
          ++second;
        }
        const std::shared_lock reading(lock);
        torn += first != second;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(first, 2000);
  EXPECT_EQ(torn, 0);
}

TEST(ZCLGcdRWLock, AReadSeesTheWriteBeforeIt) {
  ZCLGcdRWLock lock;
  platform::Semaphore begin(0);
  int value = 0;
  lock.writeAsync([&] {
    begin.wait();
    value = 1;
  });
  EXPECT_EQ(value, 0);  // still waiting, and nothing else runs
  begin.signal();
  EXPECT_EQ(lock.read([&] { return value; }), 1);
  lock.write([&] { value = 2; });
  EXPECT_EQ(value, 2);
}
