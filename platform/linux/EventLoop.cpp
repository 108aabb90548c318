#include "platform/linux/EventLoop.h"

#include <sys/epoll.h>

#include <array>
#include <utility>

#include "foundation/Assertion.h"
#include "platform/linux/SystemThread.h"

namespace platform {

EventLoop& EventLoop::shared() {
  static EventLoop& loop = *new EventLoop;
  return loop;
}

EventLoop::EventLoop() : epoll_(epoll_create1(EPOLL_CLOEXEC)) {
  ZARVO_ASSERT(epoll_ >= 0);
  ZARVO_ASSERT(startSystemThread("zarvo-events", [this] { run(); }));
}

void EventLoop::watch(int descriptor, std::function<void()> callback) {
  foundation::MutexLock lock(mutex_);
  callbacks_[descriptor] = std::make_shared<const std::function<void()>>(std::move(callback));
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = descriptor;
  ZARVO_ASSERT(epoll_ctl(epoll_, EPOLL_CTL_ADD, descriptor, &event) == 0);
}

void EventLoop::unwatch(int descriptor) {
  foundation::MutexLock lock(mutex_);
  epoll_ctl(epoll_, EPOLL_CTL_DEL, descriptor, nullptr);
  callbacks_.erase(descriptor);
}

EventLoop::Callback EventLoop::callback(int descriptor) {
  foundation::MutexLock lock(mutex_);
  const auto found = callbacks_.find(descriptor);
  return found == callbacks_.end() ? nullptr : found->second;
}

void EventLoop::run() {
  std::array<epoll_event, 16> events;
  while (true) {
    const int count = epoll_wait(epoll_, events.data(), static_cast<int>(events.size()), -1);
    for (int i = 0; i < count; ++i) {
      const Callback call = callback(events[static_cast<std::size_t>(i)].data.fd);
      if (call) (*call)();
    }
  }
}

}  // namespace platform
