#include "platform/Queue.h"

#include <cstdio>
#include <cstdlib>

#include "platform/Group.h"
#include "platform/Process.h"

namespace platform {
namespace {

// Of type Queue::Context*, which is not to be named out here; trivial, so that exit handlers may
// still use it.
thread_local void* innermost = nullptr;

}  // namespace

Queue::Context::Context(Queue* entered) : queue(entered), outer(static_cast<Context*>(innermost)) {
  innermost = this;
}

Queue::Context::~Context() { innermost = outer; }

Queue::Queue(foundation::NullableText label)
    : label_(std::make_shared<const std::string>(label.view())) {}

Queue::~Queue() = default;

Queue* Queue::current() {
  if (innermost) return static_cast<Context*>(innermost)->queue;
  return Process::isMainThread() ? mainQueue().get() : nullptr;
}

void* Queue::currentSpecific(const void* key) {
  const Queue* const queue = current();
  return queue ? queue->specific(key) : nullptr;
}

void Queue::setSpecific(const void* key, void* value) {
  foundation::MutexLock lock(specificsMutex_);
  if (value) {
    specifics_[key] = value;
  } else {
    specifics_.erase(key);
  }
}

void* Queue::specific(const void* key) const {
  foundation::MutexLock lock(specificsMutex_);
  const auto found = specifics_.find(key);
  return found == specifics_.end() ? nullptr : found->second;
}

bool Queue::isCurrentThreadInside() const {
  for (auto* context = static_cast<Context*>(innermost); context; context = context->outer) {
    if (context->queue == this) return true;
  }
  return false;
}

bool Queue::isInsideSpecific(const void* key) {
  for (auto* context = static_cast<Context*>(innermost); context; context = context->outer) {
    if (context->queue->specific(key)) return true;
  }
  return !innermost && currentSpecific(key);
}

void Queue::stopDeadlock() const {
  std::fprintf(stderr, "sync onto the queue \"%s\" from a block of its own would never return.\n",
               label_->c_str());
  std::abort();
}

void Queue::forbidDeadlock() const {
  if (isCurrentThreadInside()) stopDeadlock();
}

void Queue::async(Group& group, Block block) {
  group.enter();
  async([&group, work = std::move(block)]() mutable {
    work();
    work = nullptr;
    group.leave();
  });
}

}  // namespace platform
