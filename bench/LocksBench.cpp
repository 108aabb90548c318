// Read/write locks beside the system's and Boost's; a request within a burst of requests.
#include <pthread.h>

#include <mutex>
#include <shared_mutex>

#include <benchmark/benchmark.h>

#ifdef ZARVO_HAVE_BOOST
#include <boost/thread/shared_mutex.hpp>
#endif

#include "ZCommons/Lang/ZCLExecuteBlockDelayed.h"
#include "ZCommons/Lang/ZCLGcdRWLock.h"
#include "ZCommons/Lang/ZCLRWLock.h"
#include "bench/AllocationCounter.h"

namespace {

/// The system's lock, as the guards of the standard library want it.
class PthreadLock {
 public:
  void lock() { pthread_rwlock_wrlock(&lock_); }
  void unlock() { pthread_rwlock_unlock(&lock_); }
  void lock_shared() { pthread_rwlock_rdlock(&lock_); }
  void unlock_shared() { pthread_rwlock_unlock(&lock_); }

 private:
  pthread_rwlock_t lock_ = PTHREAD_RWLOCK_INITIALIZER;
};

template <class Lock>
void read(benchmark::State& state) {
  static Lock& lock = *new Lock;
  for (auto _ : state) {
    const std::shared_lock reading(lock);
    benchmark::ClobberMemory();
  }
}

template <class Lock>
void write(benchmark::State& state) {
  static Lock& lock = *new Lock;
  for (auto _ : state) {
    const std::unique_lock writing(lock);
    benchmark::ClobberMemory();
  }
}

void readOnQueue(benchmark::State& state) {
  static ZCLGcdRWLock& lock = *new ZCLGcdRWLock;
  for (auto _ : state) lock.read([] { benchmark::ClobberMemory(); });
}

void writeOnQueue(benchmark::State& state) {
  static ZCLGcdRWLock& lock = *new ZCLGcdRWLock;
  for (auto _ : state) lock.write([] { benchmark::ClobberMemory(); });
}

void requestWithinABurst(benchmark::State& state) {
  const auto queue = platform::Queue::serialQueue("work");
  const auto delayed = ZCLExecuteBlockDelayed::initWithTimeout(60, 0, queue, [] {});
  queue->sync([&] {
    delayed->executeOnceAfterCalm();
    const long before = allocationCount();
    for (auto _ : state) delayed->executeOnceAfterCalm();
    state.counters["allocations"] = static_cast<double>(allocationCount() - before);
    delayed->stopUpdateTimer();
  });
}

BENCHMARK(read<ZCLRWLock>)->Threads(1)->Threads(2);
BENCHMARK(read<PthreadLock>)->Threads(1)->Threads(2);
BENCHMARK(readOnQueue)->Threads(1)->Threads(2);
#ifdef ZARVO_HAVE_BOOST
BENCHMARK(read<boost::shared_mutex>)->Threads(1)->Threads(2);
#endif
BENCHMARK(write<ZCLRWLock>)->Threads(1)->Threads(2);
BENCHMARK(write<PthreadLock>)->Threads(1)->Threads(2);
BENCHMARK(writeOnQueue)->Threads(1)->Threads(2);
#ifdef ZARVO_HAVE_BOOST
BENCHMARK(write<boost::shared_mutex>)->Threads(1)->Threads(2);
#endif
BENCHMARK(requestWithinABurst);

}  // namespace
