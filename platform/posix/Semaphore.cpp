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
  std::uint64_t state = state_.load();
  while ((state & (sleeper - 1)) > 0) {
    if (state_.compare_exchange_weak(state, state - 1)) return true;
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
  state_.fetch_add(sleeper);
  while (!tryTake()) {
    signalled_.wait(mutex_);
    if (woken_ == 0) continue;
    --woken_;
    state_.fetch_add(sleeper);
  }
  state_.fetch_sub(sleeper);
}

bool Semaphore::wait(std::chrono::nanoseconds duration) {
  if (tryTake()) return true;
  const auto deadline = std::chrono::steady_clock::now() + duration;
  const BlockingRegion waiting;
  foundation::MutexLock lock(mutex_);
  state_.fetch_add(sleeper);
  bool taken = tryTake();
  while (!taken) {
    const auto left = deadline - std::chrono::steady_clock::now();
    if (left <= left.zero()) break;
    signalled_.waitFor(mutex_, left);
    if (woken_ > 0) {
      --woken_;
      state_.fetch_add(sleeper);
    }
    taken = tryTake();
  }
  state_.fetch_sub(sleeper);
  return taken;
}

void Semaphore::signal() {
  std::uint64_t state = state_.load();
  while (state < sleeper) {
    if (state_.compare_exchange_weak(state, state + 1)) return;
  }
  signalSleeper();
}

// A sleeper on its way needs no second wake-up: whoever signals fast would spend its time on
// nothing else.
void Semaphore::signalSleeper() {
  foundation::MutexLock lock(mutex_);
  if (state_.fetch_add(1) < sleeper) return;
  state_.fetch_sub(sleeper);
  ++woken_;
  signalled_.notifyOne();
}

}  // namespace platform
