#include "platform/Queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

#include "platform/Group.h"
#include "platform/Process.h"
#include "platform/Semaphore.h"

using platform::Group;
using platform::MainQueue::drain;
using platform::Queue;
using platform::QueueRef;
using platform::Semaphore;

TEST(Queue, RunsBlocksOneAtATimeInTheOrderOfSubmission) {
  const QueueRef queue = Queue::serialQueue("order");
  std::vector<int> seen;
  for (int i = 0; i < 10000; ++i) queue->async([&seen, i] { seen.push_back(i); });
  std::vector<int> expected(10000);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(queue->sync([&] { return seen; }), expected);
}

TEST(Queue, SyncOnAnIdleQueueRunsOnTheCallersThread) {
  const QueueRef queue = Queue::serialQueue("idle");
  EXPECT_EQ(queue->sync([] { return std::this_thread::get_id(); }), std::this_thread::get_id());
}

TEST(Queue, SyncNeverOvertakesAnEarlierAsyncOfItsCaller) {
  const QueueRef queue = Queue::serialQueue("mixed");
  std::atomic<int> mistakes{0};
  std::vector<std::thread> callers;
  for (int t = 0; t < 4; ++t) {
    callers.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        const auto done = std::make_shared<bool>(false);
        queue->async([done] { *done = true; });
        if (!queue->sync([&] { return *done; })) ++mistakes;
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(mistakes, 0);
}

TEST(Queue, ExcludesSyncCallersFromOneAnother) {
  const QueueRef queue = Queue::serialQueue("exclusion");
  long count = 0;
  std::vector<std::thread> callers;
  for (int t = 0; t < 4; ++t) {
    callers.emplace_back([&] {
      for (int i = 0; i < 20000; ++i) queue->sync([&] { ++count; });
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(count, 80000);
}

TEST(Queue, ExceptionsLeaveSyncAndTheQueueGoesOn) {
  const QueueRef queue = Queue::serialQueue("exceptions");
  EXPECT_THROW(queue->sync([] { throw std::runtime_error("x"); }), std::runtime_error);
  EXPECT_EQ(queue->sync([] { return 7; }), 7);
}

TEST(QueueDeathTest, StopsOnWhatCouldNeverReturnOrHasNobodyToGoTo) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto nested = [] {
    const QueueRef outer = Queue::serialQueue("outer");
    const QueueRef inner = Queue::serialQueue("inner");
    outer->sync([&] { inner->sync([&] { outer->sync([] {}); }); });
  };
  EXPECT_DEATH(nested(), "queue \"outer\"");
  EXPECT_DEATH(Queue::mainQueue()->sync([] {}), "queue \"main-thread\"");
  const auto throwing = [] {
    const QueueRef queue = Queue::serialQueue("throwing");
    queue->async([] { throw std::runtime_error("nobody catches me"); });
    queue->sync([] {});
  };
  EXPECT_DEATH(throwing(), "nobody catches me");
}

TEST(Queue, KnowsTheCurrentQueueAndItsSpecifics) {
  const QueueRef outer = Queue::serialQueue("outer");
  const QueueRef inner = Queue::serialQueue(nullptr);
  int key = 0;
  int value = 0;
  outer->setSpecific(&key, &value);
  EXPECT_EQ(*inner->label(), "");
  EXPECT_EQ(Queue::current(), Queue::mainQueue().get());
  outer->sync([&] {
    EXPECT_EQ(Queue::currentSpecific(&key), &value);
    inner->sync([&] {
      EXPECT_EQ(Queue::current(), inner.get());
      EXPECT_EQ(Queue::currentSpecific(&key), nullptr);
      EXPECT_TRUE(outer->isCurrentThreadInside());
    });
  });
  EXPECT_FALSE(outer->isCurrentThreadInside());
  std::thread([] { EXPECT_EQ(Queue::current(), nullptr); }).join();
}

TEST(Queue, LivesUntilItsLastBlockHasRun) {
  std::promise<std::string> label;
  Semaphore gate(0);
  {
    const QueueRef queue = Queue::serialQueue("orphan");
    queue->async([&] { gate.wait(); });
    queue->async([&] { label.set_value(*Queue::current()->label()); });
  }
  gate.signal();
  EXPECT_EQ(label.get_future().get(), "orphan");
}

// Each block waits for the next queue, far more of them than there are processors.
TEST(Queue, QueuesThatWaitForOneAnotherDoNotStarveThePool) {
  std::vector<QueueRef> queues(200);
  for (QueueRef& queue : queues) queue = Queue::serialQueue("chain");
  Semaphore last(0);
  Group group;
  for (std::size_t i = 0; i < queues.size(); ++i) {
    queues[i]->async(group, [&, i] {
      if (i + 1 == queues.size()) {
        last.wait();
      } else {
        queues[i + 1]->sync([] {});
      }
    });
  }
  last.signal();
  EXPECT_TRUE(group.wait(std::chrono::seconds(60)));
}

TEST(MainQueue, RunsItsBlocksOnTheMainThreadOnly) {
  const auto mainThread = std::this_thread::get_id();
  std::vector<bool> onMain;
  std::future<void> other = std::async(std::launch::async, [&] {
    const auto note = [&] { onMain.push_back(std::this_thread::get_id() == mainThread); };
    Queue::mainQueue()->async(note);
    Queue::mainQueue()->sync(note);
    EXPECT_THROW(Queue::mainQueue()->sync([] { throw std::runtime_error("x"); }),
                 std::runtime_error);
    platform::MainQueue::stop();
  });
  platform::MainQueue::run();
  other.get();
  EXPECT_EQ(onMain, std::vector<bool>({true, true}));
}

TEST(MainQueue, DrainRunsWhatWaitsNow) {
  int runs = 0;
  Queue::mainQueue()->async([&] {
    ++runs;
    Queue::mainQueue()->async([&] { ++runs; });
  });
  drain();
  EXPECT_EQ(runs, 1);
  drain();
  EXPECT_EQ(runs, 2);
}

TEST(Group, WaitsForItsMembersAndNotifies) {
  const QueueRef queue = Queue::serialQueue("group");
  Semaphore gate(0);
  Group group;
  group.wait();
  queue->async(group, [&] { gate.wait(); });
  EXPECT_FALSE(group.wait(std::chrono::milliseconds(1)));
  std::promise<void> told;
  group.notify(queue, [&] { told.set_value(); });
  gate.signal();
  group.wait();
  told.get_future().get();
}

TEST(Semaphore, BlocksAtZeroAndLosesNoSignal) {
  Semaphore semaphore(2);
  EXPECT_TRUE(semaphore.wait(std::chrono::nanoseconds(0)));
  EXPECT_TRUE(semaphore.wait(std::chrono::nanoseconds(0)));
  EXPECT_FALSE(semaphore.wait(std::chrono::milliseconds(1)));
  std::vector<std::thread> takers;
  for (int t = 0; t < 4; ++t) {
    takers.emplace_back([&] {
      for (int i = 0; i < 5000; ++i) semaphore.wait();
    });
  }
  for (int i = 0; i < 20000; ++i) semaphore.signal();
  for (std::thread& taker : takers) taker.join();
  EXPECT_FALSE(semaphore.wait(std::chrono::nanoseconds(0)));
}
