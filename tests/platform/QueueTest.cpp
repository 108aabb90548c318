#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Group.h"
#include "platform/Process.h"
#include "platform/Queue.h"
#include "platform/Semaphore.h"

using platform::Group;
using platform::Queue;
using platform::QueueRef;
using platform::Semaphore;

namespace {

void onFourThreads(const std::function<void()>& body) {
  std::vector<std::thread> threads(4);
  for (std::thread& thread : threads) thread = std::thread(body);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

TEST(Queue, RunsItsBlocksInOrderAlsoWhenNobodyHoldsIt) {
  std::vector<int> expected(10000);
  std::iota(expected.begin(), expected.end(), 0);
  std::vector<int> seen;
  Semaphore begin(0);
  Semaphore end(0);
  QueueRef queue = Queue::serialQueue("orphan");
  queue->async([&] { begin.wait(); });
  for (const int i : expected) queue->async([&seen, i] { seen.push_back(i); });
  queue->async([&] { end.signal(); });
  queue.reset();
  begin.signal();
  end.wait();
  EXPECT_EQ(seen, expected);
}

TEST(Queue, SyncExcludesItsCallersAndNeverOvertakesTheirAsyncs) {
  const QueueRef queue = Queue::serialQueue("sync");
  std::atomic<int> mistakes{0};
  onFourThreads([&] {
    for (int i = 0; i < 2000; ++i) {
      const auto done = std::make_shared<bool>(false);
      queue->async([done] { *done = true; });
      if (!queue->sync([&] { return *done; })) ++mistakes;
    }
  });
  EXPECT_EQ(mistakes, 0);
  long count = 0;
  onFourThreads([&] {
    for (int i = 0; i < 20000; ++i) queue->sync([&] { ++count; });
  });
  EXPECT_EQ(count, 80000);
}

TEST(Queue, SyncOnAnIdleQueueRunsOnTheCallersThreadAndPassesExceptionsOn) {
  const QueueRef queue = Queue::serialQueue("idle");
  EXPECT_THROW(queue->sync([] { throw std::runtime_error("x"); }), std::runtime_error);
  EXPECT_EQ(queue->sync([] { return std::this_thread::get_id(); }), std::this_thread::get_id());
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
  outer->setSpecific(&key, &key);
  inner->async([&] { EXPECT_FALSE(outer->isCurrentThreadInside()); });
  outer->sync([&] {
    EXPECT_EQ(Queue::currentSpecific(&key), &key);
    inner->sync([&] {
      EXPECT_EQ(Queue::current(), inner.get());
      EXPECT_EQ(Queue::currentSpecific(&key), nullptr);
      EXPECT_TRUE(outer->isCurrentThreadInside());
    });
  });
  EXPECT_EQ(Queue::current(), Queue::mainQueue().get());
}

// Each block waits for the next queue, far more of them than there are processors.
TEST(Queue, QueuesThatWaitForOneAnotherDoNotStarveThePool) {
  std::vector<QueueRef> queues(200);
  for (QueueRef& queue : queues) queue = Queue::serialQueue("chain");
  Semaphore last(0);
  Group group;
  for (std::size_t i = 0; i < queues.size(); ++i) {
    queues[i]->async(group, [&, i] {
      if (i + 1 == queues.size()) return last.wait();
      queues[i + 1]->sync([] {});
    });
  }
  last.signal();
  EXPECT_TRUE(group.wait(std::chrono::seconds(60)));
}

TEST(MainQueue, RunsItsBlocksOnTheMainThreadOnly) {
  int runs = 0;
  const auto run = [&] { runs += platform::Process::isMainThread(); };
  std::thread other([&] {
    Queue::mainQueue()->async(run);
    Queue::mainQueue()->sync(run);
    const auto failing = [] { throw std::runtime_error("x"); };
    EXPECT_THROW(Queue::mainQueue()->sync(failing), std::runtime_error);
    platform::MainQueue::stop();
  });
  platform::MainQueue::run();
  other.join();
  EXPECT_EQ(runs, 2);
}

TEST(MainQueue, DrainRunsWhatWaitsNow) {
  int runs = 0;
  Queue::mainQueue()->async([&] {
    ++runs;
    Queue::mainQueue()->async([&] { ++runs; });
  });
  platform::MainQueue::drain();
  EXPECT_EQ(runs, 1);
  platform::MainQueue::drain();
  EXPECT_EQ(runs, 2);
}

TEST(Group, WaitsForItsMembersAndNotifies) {
  const QueueRef queue = Queue::serialQueue("group");
  Semaphore gate(0);
  Group group;
  group.wait();
  queue->async(group, [&] { gate.wait(); });
  EXPECT_FALSE(group.wait(std::chrono::milliseconds(1)));
  Semaphore told(0);
  group.notify(queue, [&] { told.signal(); });
  gate.signal();
  group.wait();
  told.wait();
}

TEST(Semaphore, BlocksAtZeroAndLosesNoSignal) {
  Semaphore semaphore(1);
  EXPECT_TRUE(semaphore.wait(std::chrono::nanoseconds(0)));
  EXPECT_FALSE(semaphore.wait(std::chrono::milliseconds(1)));
  std::thread signaller([&] {
    for (int i = 0; i < 20000; ++i) semaphore.signal();
  });
  onFourThreads([&] {
    for (int i = 0; i < 5000; ++i) semaphore.wait();
  });
  signaller.join();
  EXPECT_FALSE(semaphore.wait(std::chrono::nanoseconds(0)));
}
