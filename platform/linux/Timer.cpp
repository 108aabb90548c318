#include "platform/Timer.h"

#include <utility>

#include "foundation/Mutex.h"
#include "platform/posix/AlarmHeap.h"

namespace platform {
namespace {

std::int64_t nanoseconds(foundation::TimeInterval interval) {
  return interval > 0 ? clampedNanoseconds(foundation::durationOf(interval)) : 0;
}

std::int64_t monotonicDeadline(Clock& clock, foundation::TimeInterval delay) {
  const std::int64_t now = clock.monotonicNow().time_since_epoch().count();
  const std::int64_t length = nanoseconds(delay);
  return length < AlarmHeap::never - now ? now + length : AlarmHeap::never;
}

}  // namespace

class Timer::Source : public Alarm, public std::enable_shared_from_this<Source> {
 public:
  Source(QueueRef queue, Block handler)
      : clock_(Clock::current()), queue_(std::move(queue)), handler_(std::move(handler)) {}

  Clock& clock() { return clock_; }

  void set(Clock::Hand hand, std::int64_t deadline, foundation::TimeInterval interval,
           foundation::TimeInterval leeway) {
    foundation::MutexLock lock(mutex_);
    if (cancelled_) return;
    ticket_ =
        clock_.set(shared_from_this(), hand, deadline, nanoseconds(interval), nanoseconds(leeway));
  }

  // The handler may be running, and may be what cancels: the queue lets go of it afterwards.
  void cancel() {
    {
      foundation::MutexLock lock(mutex_);
      if (std::exchange(cancelled_, true)) return;
      clock_.set(shared_from_this(), Clock::Hand::monotonic, AlarmHeap::never, 0, 0);
    }
    queue_->async([self = shared_from_this()] { self->handler_ = nullptr; });
  }

  void fire(std::uint64_t ticket) override {
    fired_.store(ticket);
    if (delivering_.exchange(true)) return;
    queue_->async([self = shared_from_this()] { self->deliver(); });
  }

 private:
  void deliver() {
    delivering_.store(false);
    if (isInForce(fired_.load())) handler_();
  }

  bool isInForce(std::uint64_t ticket) {
    foundation::MutexLock lock(mutex_);
    return !cancelled_ && ticket == ticket_;
  }

  Clock& clock_;
  const QueueRef queue_;
  Block handler_;  // touched on the queue alone
  std::atomic<std::uint64_t> fired_{0};
  std::atomic<bool> delivering_{false};
  foundation::Mutex mutex_;
  std::uint64_t ticket_ ZARVO_GUARDED_BY(mutex_) = 0;
  bool cancelled_ ZARVO_GUARDED_BY(mutex_) = false;
};

Timer::Timer(std::shared_ptr<Source> source) : source_(std::move(source)) {}

std::shared_ptr<Timer> Timer::timer(QueueRef queue, Block handler) {
  return TimerRef(new Timer(std::make_shared<Source>(std::move(queue), std::move(handler))));
}

Timer::~Timer() { source_->cancel(); }

void Timer::startAfter(foundation::TimeInterval delay, foundation::TimeInterval interval,
                       foundation::TimeInterval leeway) {
  source_->set(Clock::Hand::monotonic, monotonicDeadline(source_->clock(), delay), interval,
               leeway);
}

void Timer::startAt(foundation::Date date, foundation::TimeInterval interval,
                    foundation::TimeInterval leeway) {
  source_->set(Clock::Hand::wall, clampedNanoseconds(date.time_since_epoch()), interval, leeway);
}

void Timer::cancel() { source_->cancel(); }

namespace {

/// Holds itself until it has fired.
class Delayed : public Alarm {
 public:
  Delayed(QueueRef queue, Block block) : queue_(std::move(queue)), block_(std::move(block)) {}

  void holdUntilFired(const std::shared_ptr<Delayed>& self) { self_ = self; }

  void fire(std::uint64_t) override {
    queue_->async(std::move(block_));
    self_.reset();
  }

 private:
  const QueueRef queue_;
  Block block_;
  std::shared_ptr<Delayed> self_;
};

}  // namespace

void after(foundation::TimeInterval delay, QueueRef queue, Block block) {
  const auto alarm = std::make_shared<Delayed>(std::move(queue), std::move(block));
  alarm->holdUntilFired(alarm);
  Clock& clock = Clock::current();
  clock.set(alarm, Clock::Hand::monotonic, monotonicDeadline(clock, delay), 0, 0);
}

}  // namespace platform
