#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Group.h"
#include "platform/Queue.h"
#include "platform/Semaphore.h"

using platform::Group;
using platform::Queue;
using platform::QueueRef;
using platform::Semaphore;

TEST(ConcurrentQueue, LetsBlocksAndCallersRunSideBySide) {
  const QueueRef queue = Queue::concurrentQueue("side by side");
  Semaphore block(0);
  Semaphore caller(0);
  Group group;
  queue->async(group, [&] {
    block.signal();
    caller.wait();
  });
  queue->sync([&] {  // each waits for the other
    block.wait();
    caller.signal();
  });
  group.wait();
}

TEST(ConcurrentQueue, BarriersWaitForWhatIsBeforeThemAndHoldUpWhatIsBehind) {
  const QueueRef queue = Queue::concurrentQueue("order");
  Semaphore begin(0);
  std::string seen;
  queue->async([&] {
    begin.wait();
    seen += "a";
  });
  queue->barrierAsync([&] { seen += "b"; });
  queue->barrierAsync([&] { seen += "c"; });
  begin.signal();
  EXPECT_EQ(queue->sync([&] { return seen; }), "abc");
  queue->barrierSync([&] { seen += "d"; });
  EXPECT_EQ(seen, "abcd");
}

TEST(ConcurrentQueue, KeepsReadersFromWritersUnderLoad) {
  const QueueRef queue = Queue::concurrentQueue("load");
  long first = 0;
  long second = 0;
  std::atomic<int> torn{0};
  const auto write = [&] {
    ++first;
    ++second;
  };
  const auto read = [&] { torn += first != second; };
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 3000; ++i) {
        queue->sync(read);
        if (i % 8 == t) queue->barrierSync(write);
        if (i % 8 == t + 4) queue->barrierAsync(write);
        if (i % 4 == t) queue->async(read);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(queue->barrierSync([&] { return first; }), 3000);
  EXPECT_EQ(torn, 0);
}

TEST(ConcurrentQueue, RunsWhatIsInLineWhenNobodyHoldsIt) {
  QueueRef queue = Queue::concurrentQueue("orphan");
  Semaphore begin(0);
  Semaphore end(0);
  queue->barrierAsync([&] { begin.wait(); });
  queue->async([&] { end.signal(); });
  const std::weak_ptr<Queue> alive = queue;
  queue.reset();
  begin.signal();
  end.wait();
  while (!alive.expired()) std::this_thread::yield();
}

TEST(ConcurrentQueue, GoesOnAfterAnExceptionFromSync) {
  const QueueRef queue = Queue::concurrentQueue("throwing");
  EXPECT_THROW(queue->barrierSync([] { throw std::runtime_error("no"); }), std::runtime_error);
  EXPECT_THROW(queue->sync([] { throw std::runtime_error("no"); }), std::runtime_error);
  EXPECT_EQ(queue->barrierSync([] { return 7; }), 7);
}

TEST(ConcurrentQueueDeathTest, StopsInsteadOfWaitingForItself) {
  const QueueRef queue = Queue::concurrentQueue("mine");
  EXPECT_DEATH(queue->sync([&] { queue->barrierSync([] {}); }), "sync onto the queue \"mine\"");
  EXPECT_DEATH(queue->sync([&] { queue->sync([] {}); }), "sync onto the queue \"mine\"");
}
