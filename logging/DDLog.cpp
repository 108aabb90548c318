#include "logging/DDLog.h"

#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "foundation/ClassName.h"
#include "logging/DDLogMessagePool.h"
#include "logging/DDLoggerNode.h"
#include "logging/DDRegisteredClass.h"
#include "platform/Console.h"
#include "platform/Group.h"
#include "platform/Process.h"
#include "platform/Semaphore.h"

using foundation::FormatArgument;
using foundation::NullableText;
using platform::Console;
using platform::Queue;
using platform::QueueRef;

namespace {

constexpr std::int64_t maximumWaitingMessages = 1000;

// Addresses that stand for themselves: the logging queue carries both, loggers' queues the second.
char loggingQueueMark;
char ownQueueMark;

// Runs code of a logger's, which must not take the process down.
template <class F>
void guarded(std::string_view operation, const F& function) noexcept {
  try {
    function();
  } catch (const std::exception& exception) {
    Console::log("DDLog: exception in %@: %@", operation, exception.what());
  } catch (...) {
    Console::log("DDLog: unknown exception in %@", operation);
  }
}

// The registration for which `matches` holds, or null.
template <class F>
const DDRegisteredClass* findClass(const F& matches) {
  const DDRegisteredClass* entry = DDRegisteredClass::last();
  while (entry && !matches(entry->type())) entry = entry->previous();
  return entry;
}

const DDRegisteredClass* classOfType(std::type_index wanted) {
  return findClass([&](const std::type_info& type) { return std::type_index(type) == wanted; });
}

const DDRegisteredClass* classWithName(std::string_view name) {
  return findClass([&](const std::type_info& type) { return foundation::className(type) == name; });
}

std::uint32_t levelOf(const DDRegisteredClass* entry) {
  return entry ? entry->logLevel() : UINT32_MAX;
}

}  // namespace

/// Everything behind `DDLog`; never destroyed. Unless it says otherwise a member runs on the
/// logging queue, which therefore needs no lock.
class DDLog::Dispatcher {
 public:
  static Dispatcher& shared() {
    static Dispatcher& dispatcher = *new Dispatcher;
    return dispatcher;
  }

  const QueueRef& queue() const { return queue_; }

  /// Whether the calling thread must not wait for the log. Any thread.
  static bool isOnOwnQueue() { return Queue::isInsideSpecific(&ownQueueMark); }

  /// Any thread.
  void submit(DDLogMessage&& message, bool asynchronously) {
    if (isOnOwnQueue()) {
      const bool counted = waiting_.wait(std::chrono::nanoseconds(0));
      return submitAsynchronously(std::move(message), counted);
    }
    waiting_.wait();
    if (asynchronously && !exiting_.load(std::memory_order_relaxed)) {
      return submitAsynchronously(std::move(message), true);
    }
    queue_->sync([&] {
      dispatch(message);
      waiting_.signal();
    });
  }

  /// Any thread that is on no queue of the log's own.
  void flush() {
    queue_->sync([this] {
      forEach([](const DDLoggerNode&) { return true; },
              [](const DDLoggerNode& node) { guarded("flush", [&] { node.logger->flush(); }); });
    });
  }

  void add(std::shared_ptr<DDLogger> logger, std::uint32_t logLevel) {
    QueueRef queue = logger->loggerQueue();
    if (!queue) queue = Queue::serialQueue(logger->loggerName());
    queue->setSpecific(&ownQueueMark, &ownQueueMark);
    queue->async([logger] { guarded("didAddLogger", [&] { logger->didAddLogger(); }); });
    nodes_.push_back(DDLoggerNode::nodeWithLogger(std::move(logger), std::move(queue), logLevel));
  }

  void remove(const std::shared_ptr<DDLogger>& logger) {
    const auto node =
        std::find_if(nodes_.begin(), nodes_.end(),
                     [&](const DDLoggerNode& candidate) { return candidate.logger == logger; });
    if (node == nodes_.end()) return;
    letGo(*node);
    nodes_.erase(node);
  }

  void removeAll() {
    for (const DDLoggerNode& node : nodes_) letGo(node);
    nodes_.clear();
  }

 private:
  Dispatcher() {
    nodes_.reserve(4);
    queue_->setSpecific(&loggingQueueMark, &loggingQueueMark);
    queue_->setSpecific(&ownQueueMark, &ownQueueMark);
    static_cast<void>(atexit([] { shared().exitProcess(); }));
  }

  // After the last flush nobody waits for asynchronous messages any more.
  void exitProcess() {
    if (isOnOwnQueue()) return;
    DDLog::applicationWillTerminate();
    exiting_.store(true);
  }

  void submitAsynchronously(DDLogMessage&& message, bool counted) {
    queue_->async([this, held = pool_.hold(std::move(message)), counted] {
      dispatch(*held);
      if (counted) waiting_.signal();
    });
  }

  void dispatch(const DDLogMessage& message) {
    forEach([&](const DDLoggerNode& node) { return (node.logLevel & message.logFlag()) != 0; },
            [&](const DDLoggerNode& node) {
              guarded("logMessage:", [&] { node.logger->logMessage(message); });
            });
  }

  // Calls every node that is wanted, each on its queue, and returns when all are done. A single one
  // is called on this thread: the order and the waiting are the same.
  template <class Wants, class Call>
  void forEach(const Wants& wants, const Call& call) {
    const auto count = std::count_if(nodes_.begin(), nodes_.end(), wants);
    const bool inParallel = processorCount_ > 1 && count > 1;
    for (const DDLoggerNode& node : nodes_) {
      if (!wants(node)) continue;
      if (inParallel) {
        node.loggerQueue->async(group_, [&] { call(node); });
      } else {
        node.loggerQueue->sync([&] { call(node); });
      }
    }
    if (inParallel) group_.wait();
  }

  static void letGo(const DDLoggerNode& node) {
    node.loggerQueue->async([logger = node.logger] {
      guarded("willRemoveLogger", [&] { logger->willRemoveLogger(); });
    });
  }

  const QueueRef queue_ = Queue::serialQueue("cocoa.quillwort");
  const unsigned processorCount_ = platform::Process::processorCount();
  std::vector<DDLoggerNode> nodes_;
  DDLogMessagePool pool_;
  platform::Group group_;
  platform::Semaphore waiting_{maximumWaitingMessages};
  std::atomic<bool> exiting_{false};
};

const QueueRef& DDLog::loggingQueue() { return Dispatcher::shared().queue(); }

const void* DDLog::loggingQueueKey() { return &loggingQueueMark; }

void DDLog::addLogger(std::shared_ptr<DDLogger> logger, std::uint32_t logLevel) {
  if (!logger) return;
  loggingQueue()->async([added = std::move(logger), logLevel] {
    guarded("addLogger:", [&] { Dispatcher::shared().add(added, logLevel); });
  });
}

void DDLog::removeLogger(std::shared_ptr<DDLogger> logger) {
  if (!logger) return;
  loggingQueue()->async([removed = std::move(logger)] { Dispatcher::shared().remove(removed); });
}

void DDLog::removeAllLoggers() {
  loggingQueue()->async([] { Dispatcher::shared().removeAll(); });
}

void DDLog::logArguments(bool asynchronous, std::uint32_t level, std::uint32_t flag,
                         std::int32_t context, const char* file, const char* function,
                         std::int32_t line, const std::shared_ptr<foundation::Object>& tag,
                         NullableText format, std::span<const FormatArgument> arguments) noexcept {
  if (format.isNull()) return;
  guarded("log:", [&] {
    queueLogMessage(DDLogMessage({.logMsg = foundation::formatArguments(format.view(), arguments),
                                  .logLevel = level,
                                  .logFlag = flag,
                                  .logContext = context,
                                  .file = file,
                                  .function = function,
                                  .lineNumber = line,
                                  .tag = tag}),
                    asynchronous);
  });
}

void DDLog::queueLogMessage(DDLogMessage message, bool asynchronously) {
  Dispatcher::shared().submit(std::move(message), asynchronously);
}

void DDLog::flushLog() {
  if (!Dispatcher::isOnOwnQueue()) Dispatcher::shared().flush();
}

void DDLog::applicationWillTerminate() { flushLog(); }

bool DDLog::isRegisteredClass(std::type_index type) { return classOfType(type) != nullptr; }

std::vector<std::type_index> DDLog::registeredClasses() {
  std::vector<std::type_index> classes;
  for (auto* entry = DDRegisteredClass::last(); entry; entry = entry->previous()) {
    classes.emplace_back(entry->type());
  }
  return classes;
}

std::vector<std::string> DDLog::registeredClassNames() {
  std::vector<std::string> names;
  for (auto* entry = DDRegisteredClass::last(); entry; entry = entry->previous()) {
    names.push_back(foundation::className(entry->type()));
  }
  return names;
}

std::uint32_t DDLog::logLevelForClass(std::type_index type) { return levelOf(classOfType(type)); }

std::uint32_t DDLog::logLevelForClassWithName(std::string_view name) {
  return levelOf(classWithName(name));
}

void DDLog::setLogLevel(std::uint32_t level, std::type_index forClass) {
  if (const auto* const entry = classOfType(forClass)) entry->setLogLevel(level);
}

void DDLog::setLogLevel(std::uint32_t level, std::string_view forClassWithName) {
  if (const auto* const entry = classWithName(forClassWithName)) entry->setLogLevel(level);
}
