#include "platform/Semaphore.h"

#include "platform/Process.h"
#include "platform/Queue.h"

namespace platform {
namespace {

// How often a waiter looks again before it sleeps; some microseconds in all. On one processor the
// signaller cannot run meanwhile.
unsigned spinCount() {
  static const unsigned count = Process::processorCount() > 1 ? 2000 : 0;
  return count;
}

}  // namespace

bool Semaphore::tryTake() {
  std::int64_t value = value_.load();
  while (value > 0) {
    if (value_.compare_exchange_weak(value, value - 1)) return true;
  }
  return false;
}

void Semaphore::wait() {
  for (unsigned left = spinCount();; --left) {
    if (tryTake()) return;
    if (left == 0) break;
  }
  const BlockingRegion waiting;
  foundation::MutexLock lock(mutex_);
  ++sleepers_;
  while (!tryTake()) {
    signalled_.wait(mutex_);
    if (woken_ > 0) --woken_;
  }
  --sleepers_;
}

bool Semaphore::wait(std::chrono::nanoseconds duration) {
  if (tryTake()) return true;
  const auto deadline = std::chrono::steady_clock::now() + duration;
  const BlockingRegion waiting;
  foundation::MutexLock lock(mutex_);
  ++sleepers_;
  bool taken = tryTake();
  while (!taken) {
    const auto left = deadline - std::chrono::steady_clock::now();
    if (left <= left.zero()) break;
    signalled_.waitFor(mutex_, left);
    if (woken_ > 0) --woken_;
    taken = tryTake();
  }
  --sleepers_;
  return taken;
}

// A sleeper counts itself before its last look at the value, and the value is raised here before
// the look at the sleepers: one of the two sees the other. A sleeper on its way needs no second
// wake-up: whoever signals fast would spend its time on nothing else.
void Semaphore::signal() {
  value_.fetch_add(1);
  if (sleepers_.load() <= woken_.load()) return;
  foundation::MutexLock lock(mutex_);
  if (sleepers_ <= woken_) return;
  ++woken_;
  signalled_.notifyOne();
}

}  // namespace platform
