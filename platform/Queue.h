#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"
#include "foundation/NullableText.h"
#include "platform/Block.h"

namespace platform {

class Group;
class Queue;
using QueueRef = std::shared_ptr<Queue>;

/// A serial dispatch queue: blocks run one at a time, each from start to end.
///
/// `async` blocks run in the order of submission on threads of a pool, which grows when its threads
/// wait in `sync`, `Group::wait`, `Semaphore::wait` or a `BlockingRegion` (512 threads at the
/// most), so queues may wait for one another. `sync` runs the block on the caller's thread, without
/// a thread switch when the queue is idle. Callers of `sync` from different threads may overtake
/// each other, but never an `async` that was submitted before.
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
  /// A new queue. A null label is kept as the empty one.
  static QueueRef serialQueue(foundation::NullableText label);

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
  virtual void async(Block block);

  /// As `async`, as a member of `group`, which must live until the block has run.
  void async(Group& group, Block block);

  /// Runs `function` on the queue and returns what it returns (by value).
  template <class F>
  auto sync(F&& function) -> std::decay_t<std::invoke_result_t<F&>> {
    using Answer = std::decay_t<std::invoke_result_t<F&>>;
    if constexpr (std::is_void_v<Answer>) {
      syncCall(FunctionView(function));
    } else {
      std::optional<Answer> answer;
      const auto store = [&] { answer.emplace(function()); };
      syncCall(FunctionView(store));
      return *std::move(answer);
    }
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

  explicit Queue(foundation::NullableText label);

  virtual void syncCall(FunctionView function);

  /// Stops the process when the calling thread is on this queue already.
  void forbidDeadlock() const;

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

 private:
  friend class ThreadPool;
  struct Waiter;

  void drain();
  void runBlocks(std::uint64_t count);
  void acquire();
  void acquireInLine();
  void release();
  void passOn() ZARVO_REQUIRES(mutex_);
  bool isOwned() const ZARVO_REQUIRES(mutex_) { return (state_.load() & owned) != 0; }
  void clearLineIfEmpty() ZARVO_REQUIRES(mutex_);

  // The queue is owned by the thread that runs its blocks. `state_` tells whether it is, and
  // whether anything is in line; a queue with neither changes hands by that word alone. With
  // something in line every change is made under the lock, and whoever gives the queue up passes it
  // on: to the first waiter that may go, else to the pool. Waiters and blocks are told apart by
  // number: a waiter remembers how many blocks were queued before it, and may go once so many have
  // run.
  enum State : std::uint32_t { idle = 0, owned = 1, line = 2 };
  std::atomic<std::uint32_t> state_{idle};
  mutable foundation::Mutex mutex_;
  std::vector<Block> incoming_ ZARVO_GUARDED_BY(mutex_);
  std::uint64_t queued_ ZARVO_GUARDED_BY(mutex_) = 0;
  std::uint64_t finished_ ZARVO_GUARDED_BY(mutex_) = 0;
  bool scheduled_ ZARVO_GUARDED_BY(mutex_) = false;  // the pool is going to call `drain`
  Waiter* firstWaiter_ ZARVO_GUARDED_BY(mutex_) = nullptr;
  Waiter* lastWaiter_ ZARVO_GUARDED_BY(mutex_) = nullptr;
  std::map<const void*, void*> specifics_ ZARVO_GUARDED_BY(mutex_);

  std::vector<Block> running_;  // taken from `incoming_`; the owner's, like the next
  std::size_t position_ = 0;    // of the first block in `running_` that has not run

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
