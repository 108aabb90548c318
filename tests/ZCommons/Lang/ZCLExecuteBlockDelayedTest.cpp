#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "ZCommons/Lang/ZCLExecuteBlockDelayed.h"
#include "platform/SimulatedClock.h"

using foundation::Date;
using platform::Queue;
using platform::SimulatedClock;

class ZCLExecuteBlockDelayedTest : public testing::Test {
 protected:
  using Request = void (ZCLExecuteBlockDelayed::*)();

  ZCLExecuteBlockDelayedTest() { reset(); }

  void reset() {
    delayed = ZCLExecuteBlockDelayed::initWithTimeout(1, 0, queue, [this] { ++runs; });
  }

  // On the work queue, where requests belong.
  void request(Request made) {
    queue->sync([&] { (*delayed.*made)(); });
  }

  // Lets `seconds` pass; returns how often the block ran.
  int runsAfter(double seconds) {
    clock.advance(seconds);
    return queue->sync([this] { return std::exchange(runs, 0); });
  }

  SimulatedClock clock{Date()};
  platform::Clock::Replacement replacement{clock};
  const platform::QueueRef queue = Queue::serialQueue("work");
  int runs = 0;
  std::shared_ptr<ZCLExecuteBlockDelayed> delayed;
};

namespace {
constexpr auto calm = &ZCLExecuteBlockDelayed::executeOnceAfterCalm;
constexpr auto trailing = &ZCLExecuteBlockDelayed::executeOnceForIntervalDelayed;
constexpr auto leading = &ZCLExecuteBlockDelayed::executeOnceForInterval;
}  // namespace

TEST_F(ZCLExecuteBlockDelayedTest, FollowsItsPolicies) {
  const struct {
    const char* name;
    Request first;
    Request second;  // half an interval later
    int runs[4];     // in the half intervals from the first request on
  } rows[] = {
      {"calm", calm, calm, {0, 0, 1, 0}},
      {"trailing", trailing, trailing, {0, 1, 0, 0}},
      {"leading", leading, leading, {1, 0, 0, 0}},
      {"trailing pushed back", trailing, calm, {0, 0, 1, 0}},
      {"leading pushed back runs no second time", leading, calm, {1, 0, 0, 0}},
      {"calm ignores throttles", calm, trailing, {0, 1, 0, 0}},
      {"calm ignores the leading throttle", calm, leading, {0, 1, 0, 0}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    reset();
    request(row.first);
    EXPECT_EQ(runsAfter(0.5), row.runs[0]);
    request(row.second);
    EXPECT_EQ(runsAfter(0.5), row.runs[1]);
    EXPECT_EQ(runsAfter(0.5), row.runs[2]);
    EXPECT_EQ(runsAfter(0.5), row.runs[3]);
  }
}

TEST_F(ZCLExecuteBlockDelayedTest, IsIdleAgainAfterTheInterval) {
  for (int i = 0; i < 2; ++i) {
    request(leading);
    EXPECT_EQ(runsAfter(1), 1);
    request(trailing);
    EXPECT_EQ(runsAfter(1), 1);
  }
}

TEST_F(ZCLExecuteBlockDelayedTest, RunsNothingOnceItIsStopped) {
  for (const Request pending : {calm, trailing}) {
    request(pending);
    EXPECT_EQ(runsAfter(0.9), 0);
    request(&ZCLExecuteBlockDelayed::stopUpdateTimer);
    EXPECT_EQ(runsAfter(2), 0);
  }
}

TEST_F(ZCLExecuteBlockDelayedTest, MayBeAskedFromOutsideTheWorkQueue) {
  for (int i = 0; i < 3000; ++i) {
    delayed->executeOnceAfterCalm();
    clock.advance(1);  // the handler runs beside the next request
  }
  EXPECT_GE(runsAfter(1), 1);
  delayed->executeOnceAfterCalm();
  EXPECT_EQ(runsAfter(1), 1);
}

TEST_F(ZCLExecuteBlockDelayedTest, APendingTimerKeepsTheObjectAlive) {
  request(calm);
  const std::weak_ptr<ZCLExecuteBlockDelayed> alive = delayed;
  delayed = nullptr;
  EXPECT_FALSE(alive.expired());
  EXPECT_EQ(runsAfter(1), 1);
  queue->sync([] {});  // the timer lets go on the queue
  EXPECT_TRUE(alive.expired());
}
