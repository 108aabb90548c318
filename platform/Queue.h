#pragma once

#include <concepts>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "foundation/Mutex.h"
#include "foundation/NullableText.h"
#include "platform/Block.h"

namespace platform {

class Group;
class Queue;
using QueueRef = std::shared_ptr<Queue>;

/// A dispatch queue: blocks are submitted to it and run in order.
///
/// A serial queue runs them one at a time, each from start to end. A concurrent queue starts them
/// in order and lets them run side by side, except for a barrier, which begins when everything
/// before it has ended and holds up everything behind it.
///
/// `async` blocks run in the order of submission on threads of a pool, which grows when its threads
/// wait in `sync`, `Group::wait`, `Semaphore::wait` or a `BlockingRegion` (512 threads at the
/// most), so queues may wait for one another. `sync` runs the block on the caller's thread, without
/// a thread switch when the queue is idle. Callers of `sync` from different threads may overtake
/// each other on a serial queue, but never an `async` that was submitted before.
///
/// An exception that leaves a `sync` block passes on to the caller, and the queue goes on; one that
/// leaves an `async` block ends the process with a message. `sync` onto a queue that the calling
/// thread is already on (also further out) can never return: it stops the process with a message.
///
/// A queue costs no thread while idle, and lives until its last block has run. Thread safety: any
/// thread, every member.
///
///     const QueueRef queue = Queue::serialQueue("com.example.store");
///     queue->async([store] { store->compact(); });
///     const int count = queue->sync([&] { return store->count(); });
class Queue : public std::enable_shared_from_this<Queue> {
 public:
  /// A new serial queue. A null label is kept as the empty one.
  static QueueRef serialQueue(foundation::NullableText label);

  /// A new concurrent queue. A null label is kept as the empty one.
  static QueueRef concurrentQueue(foundation::NullableText label);

  /// The queue of the main thread (label "main-thread"): its blocks, those of `sync` included, run
  /// only on that thread, in `MainQueue::run` or `MainQueue::drain`. The main thread outside any
  /// block is on it.
  static const QueueRef& mainQueue();

  /// The innermost queue that the calling thread is on; null when it is on none.
  static Queue* current();

  /// The value under `key` of the current queue; null when there is none.
  static void* currentSpecific(const void* key);

  virtual ~Queue();
  Queue(const Queue&) = delete;
  Queue& operator=(const Queue&) = delete;

  /// The label, in storage that copies share and that lives as long as any of them.
  const std::shared_ptr<const std::string>& label() const { return label_; }

  /// Sets the value under `key`, an address that stands for itself; null removes it. Not owned.
  void setSpecific(const void* key, void* value);
  void* specific(const void* key) const;

  /// Whether the calling thread is on this queue, innermost or further out.
  bool isCurrentThreadInside() const;

  /// Whether the calling thread is on a queue, innermost or further out, with a value under `key`.
  static bool isInsideSpecific(const void* key);

  /// Queues `block` and returns at once.
  virtual void async(Block block) = 0;

  /// As `async`, as a member of `group`, which must live until the block has run.
  void async(Group& group, Block block);

  /// As `async`; on a concurrent queue nothing else runs while the block does.
  virtual void barrierAsync(Block block) { async(std::move(block)); }

  /// Runs `function` on the queue and returns what it returns (by value).
  template <class F>
  auto sync(F&& function) {
    return answerOf(function, [this](FunctionView call) { syncCall(call); });
  }

  /// As `sync`; on a concurrent queue nothing else runs while the block does.
  template <class F>
  auto barrierSync(F&& function) {
    return answerOf(function, [this](FunctionView call) { barrierSyncCall(call); });
  }

 protected:
  /// A callable of the caller's, for the length of a call.
  class FunctionView {
   public:
    template <class F>
    requires(!std::same_as<std::remove_cvref_t<F>, FunctionView>) explicit FunctionView(F& function)
        : object_(const_cast<void*>(static_cast<const void*>(std::addressof(function)))),
          call_([](void* object) { static_cast<void>((*static_cast<F*>(object))()); }) {}
    void operator()() const { call_(object_); }

   private:
    void* object_;
    void (*call_)(void*);
  };

  /// Marks the calling thread as on a queue for the length of a scope.
  class Context {
   public:
    explicit Context(Queue* queue);
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    Queue* queue;
    Context* outer;
  };

  explicit Queue(foundation::NullableText label);

  virtual void syncCall(FunctionView function) = 0;
  virtual void barrierSyncCall(FunctionView function) { syncCall(function); }

  /// Stops the process when the calling thread is on this queue already.
  void forbidDeadlock() const;

  [[noreturn]] void stopDeadlock() const;

  /// Runs a block inside the queue; an exception that leaves it has nobody to go to, and ends the
  /// process with its message.
  static void runToEnd(Block& block) noexcept { block(); }

 private:
  template <class F, class Call>
  static auto answerOf(F& function, Call call) -> std::decay_t<std::invoke_result_t<F&>> {
    using Answer = std::decay_t<std::invoke_result_t<F&>>;
    if constexpr (std::is_void_v<Answer>) {
      call(FunctionView(function));
    } else {
      std::optional<Answer> answer;
      const auto store = [&] { answer.emplace(function()); };
      call(FunctionView(store));
      return *std::move(answer);
    }
  }

  mutable foundation::Mutex specificsMutex_;
  std::map<const void*, void*> specifics_ ZARVO_GUARDED_BY(specificsMutex_);
  const std::shared_ptr<const std::string> label_;
};

/// Runs the main queue's blocks. To be called on the main thread only.
namespace MainQueue {

/// Runs blocks as they come until `stop`.
void run();

/// Makes `run` return after the block that is running; from any thread.
void stop();

/// Runs the blocks that wait now, and returns.
void drain();

}  // namespace MainQueue

/// Tells the pool that the calling thread is about to wait for something outside the queues (a
/// child process, a lock, input), so that others may run meanwhile. Costs nothing elsewhere.
class BlockingRegion {
 public:
  BlockingRegion();
  ~BlockingRegion();
  BlockingRegion(const BlockingRegion&) = delete;
  BlockingRegion& operator=(const BlockingRegion&) = delete;
};

}  // namespace platform
