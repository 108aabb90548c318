// A serial queue beside what else a program could use: a mutex, a thread with a condition variable,
// Boost.Asio's strand, oneTBB's serial node.

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/Queue.h"
#include "platform/Semaphore.h"
#include "platform/Timer.h"

#ifdef ZARVO_HAVE_ASIO
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#endif
#ifdef ZARVO_HAVE_TBB
#include <tbb/flow_graph.h>
#endif

using platform::Queue;
using platform::QueueRef;

namespace {

constexpr int blockCount = 100'000;

void mutexLock(benchmark::State& state) {
  static std::mutex mutex;
  static long counter = 0;
  for (auto _ : state) {
    std::lock_guard<std::mutex> lock(mutex);
    benchmark::DoNotOptimize(++counter);
  }
}

void queueSync(benchmark::State& state) {
  static const QueueRef queue = Queue::serialQueue("bench");
  static long counter = 0;
  for (auto _ : state) {
    queue->sync([] { benchmark::DoNotOptimize(++counter); });
  }
}

void queueAsyncAndDrain(benchmark::State& state) {
  const QueueRef queue = Queue::serialQueue("bench");
  long counter = 0;
  for (auto _ : state) {
    for (int i = 0; i < blockCount; ++i) queue->async([&counter] { ++counter; });
    queue->sync([] {});
  }
  state.SetItemsProcessed(state.iterations() * blockCount);
}

/// The usual home-made worker: a thread, a mutex, a condition variable, a deque of functions.
class Worker {
 public:
  ~Worker() {
    post(nullptr);
    thread_.join();
  }

  void post(std::function<void()> work) {
    std::lock_guard<std::mutex> lock(mutex_);
    work_.push_back(std::move(work));
    changed_.notify_one();
  }

 private:
  void run() {
    while (true) {
      std::unique_lock<std::mutex> lock(mutex_);
      changed_.wait(lock, [this] { return !work_.empty(); });
      std::function<void()> work = std::move(work_.front());
      work_.pop_front();
      lock.unlock();
      if (!work) return;
      work();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> work_;
  std::thread thread_{[this] { run(); }};
};

void workerAsyncAndDrain(benchmark::State& state) {
  Worker worker;
  platform::Semaphore done(0);
  long counter = 0;
  for (auto _ : state) {
    for (int i = 0; i < blockCount; ++i) worker.post([&counter] { ++counter; });
    worker.post([&done] { done.signal(); });
    done.wait();
  }
  state.SetItemsProcessed(state.iterations() * blockCount);
}

#ifdef ZARVO_HAVE_ASIO
void strandAsyncAndDrain(benchmark::State& state) {
  boost::asio::io_context context;
  const auto guard = boost::asio::make_work_guard(context);
  auto strand = boost::asio::make_strand(context);
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t) threads.emplace_back([&] { context.run(); });
  platform::Semaphore done(0);
  long counter = 0;
  for (auto _ : state) {
    for (int i = 0; i < blockCount; ++i) boost::asio::post(strand, [&counter] { ++counter; });
    boost::asio::post(strand, [&done] { done.signal(); });
    done.wait();
  }
  context.stop();
  for (std::thread& thread : threads) thread.join();
  state.SetItemsProcessed(state.iterations() * blockCount);
}
#endif

#ifdef ZARVO_HAVE_TBB
void serialNodeAsyncAndDrain(benchmark::State& state) {
  tbb::flow::graph graph;
  tbb::flow::function_node<int> node(graph, tbb::flow::serial, [](int amount) {
    static long counter = 0;
    benchmark::DoNotOptimize(counter += amount);
    return tbb::flow::continue_msg();
  });
  for (auto _ : state) {
    for (int i = 0; i < blockCount; ++i) node.try_put(1);
    graph.wait_for_all();
  }
  state.SetItemsProcessed(state.iterations() * blockCount);
}
#endif

void timerPushBack(benchmark::State& state) {
  const auto timer = platform::Timer::timer(Queue::serialQueue("bench"), [] {});
  for (auto _ : state) timer->startAfter(3600, 3600);
}

}  // namespace

BENCHMARK(mutexLock)->ThreadRange(1, 4)->UseRealTime();
BENCHMARK(queueSync)->ThreadRange(1, 4)->UseRealTime();
BENCHMARK(workerAsyncAndDrain)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(queueAsyncAndDrain)->UseRealTime()->Unit(benchmark::kMillisecond);
#ifdef ZARVO_HAVE_ASIO
BENCHMARK(strandAsyncAndDrain)->UseRealTime()->Unit(benchmark::kMillisecond);
#endif
#ifdef ZARVO_HAVE_TBB
BENCHMARK(serialNodeAsyncAndDrain)->UseRealTime()->Unit(benchmark::kMillisecond);
#endif
BENCHMARK(timerPushBack);
