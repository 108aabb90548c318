#include <chrono>
#include <future>

#include <gtest/gtest.h>

#include "platform/SimulatedClock.h"
#include "platform/Timer.h"

using foundation::Date;
using platform::Clock;
using platform::Queue;
using platform::QueueRef;
using platform::SimulatedClock;
using platform::Timer;
using platform::TimerRef;

namespace {

constexpr Date start{std::chrono::sys_days(std::chrono::year(2024) / 3 / 9)};

class TimerTest : public testing::Test {
 protected:
  // Lets time pass, and the firings be handled.
  int advance(double seconds) {
    clock.advance(seconds);
    return queue->sync([this] { return fired; });
  }

  SimulatedClock clock{start};
  Clock::Replacement replacement{clock};
  QueueRef queue = Queue::serialQueue("timer");
  int fired = 0;
  TimerRef timer = Timer::timer(queue, [this] { ++fired; });
};

}  // namespace

TEST_F(TimerTest, FiresOnceAfterItsDelayOrAtOnceWhenThatHasPassed) {
  timer->startAfter(5);
  platform::after(5, queue, [this] { ++fired; });
  EXPECT_EQ(advance(4.999), 0);
  EXPECT_EQ(advance(0.001), 2);
  EXPECT_EQ(advance(100), 2);
  timer->startAt(start - std::chrono::hours(1));
  EXPECT_EQ(advance(0), 3);
  timer->startAfter(-3);
  EXPECT_EQ(advance(0), 4);
}

TEST_F(TimerTest, RepeatsAndCountsWhatABusyQueueMissedAsOne) {
  timer->startAfter(1, 2);
  EXPECT_EQ(advance(1), 1);
  EXPECT_EQ(advance(2), 2);
  queue->sync([this] { clock.advance(20); });
  EXPECT_EQ(advance(0), 3);
}

TEST_F(TimerTest, ANewSettingReplacesTheOldOneAlsoWhenThatHasJustFired) {
  timer->startAfter(5);
  timer->startAfter(10);
  EXPECT_EQ(advance(9), 0);
  timer->startAfter(2);
  queue->sync([this] {
    clock.advance(2);
    timer->startAfter(1);
  });
  EXPECT_EQ(advance(0), 0);
  EXPECT_EQ(advance(1), 1);
}

TEST_F(TimerTest, NothingRunsOnceItIsCancelledOnItsQueueOrDestroyed) {
  const TimerRef other = Timer::timer(queue, [this] { ++fired; });
  timer->startAfter(1);
  other->startAfter(1);
  queue->sync([&] {
    clock.advance(1);
    other->cancel();
    timer.reset();
  });
  EXPECT_EQ(advance(10), 0);
}

TEST_F(TimerTest, AHandlerMayDropItsOwnTimer) {
  timer = Timer::timer(queue, [this] {
    timer.reset();
    ++fired;
  });
  timer->startAfter(1, 1);
  EXPECT_EQ(advance(5), 1);
  EXPECT_EQ(advance(5), 1);
}

TEST_F(TimerTest, AWallTimerFollowsTheClockThatIsSet) {
  timer->startAt(start + std::chrono::hours(24));
  clock.setNow(start + std::chrono::hours(23));
  EXPECT_EQ(advance(3599), 0);
  EXPECT_EQ(advance(1), 1);
}

TEST(SystemClock, DrivesTimersOfBothHands) {
  const QueueRef queue = Queue::serialQueue("real");
  std::promise<void> monotonic, wall;
  const TimerRef first = Timer::timer(queue, [&] { monotonic.set_value(); });
  const TimerRef second = Timer::timer(queue, [&] { wall.set_value(); });
  const TimerRef far = Timer::timer(queue, [] { FAIL() << "not in this life"; });
  far->startAt(foundation::distantFuture);
  first->startAfter(0.01);
  second->startAt(Clock::current().now() + std::chrono::milliseconds(5));
  monotonic.get_future().get();
  wall.get_future().get();
}
