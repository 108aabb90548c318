#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "logging/DDLogger.h"

/// Base of the concrete loggers: a queue of its own, and a formatter.
///
/// Loggers are made by factories only, which return `std::shared_ptr`: a logger hands itself to
/// queues. A subclass takes a `Key`, writes in `logMessage`, and may assume to be on its queue in
/// everything that `DDLogger` calls there.
///
/// Thread safety: any thread. Order of queues: the global logging queue first, then the logger's;
/// so nothing here that waits may be called on either.
///
///     class MemoryLogger : public DDAbstractLogger {
///      public:
///       static std::shared_ptr<MemoryLogger> init() { return
///       std::make_shared<MemoryLogger>(Key()); } explicit MemoryLogger(Key) {} void
///       logMessage(const DDLogMessage& message) override { lines_.push_back(message.logMsg()); } …
class DDAbstractLogger : public DDLogger, public std::enable_shared_from_this<DDAbstractLogger> {
 public:
  ~DDAbstractLogger() override;
  DDAbstractLogger(const DDAbstractLogger&) = delete;
  DDAbstractLogger& operator=(const DDAbstractLogger&) = delete;

  /// Does nothing.
  void logMessage(const DDLogMessage& message) override;

  /// Waits for the logging queue, then for the logger's.
  std::shared_ptr<DDLogFormatter> logFormatter() override;

  /// Takes effect after all messages logged before. The formatter in force is told that it is let
  /// go, the new one that it is taken; the same formatter again is told nothing. Null for none.
  void setLogFormatter(std::shared_ptr<DDLogFormatter> formatter) override;

  /// The logger's queue, labelled with `loggerName`. It carries the logger under its own address.
  platform::QueueRef loggerQueue() override;

  /// The name of the logger's class.
  std::optional<std::string> loggerName() override;

  /// Whether the current queue is the global logging queue, or the logger's own.
  bool isOnGlobalLoggingQueue() const;
  bool isOnInternalLoggerQueue() const;

 protected:
  /// What only factories can make.
  class Key {
   public:
    explicit Key() = default;
  };

  /// Starts with a formatter, which is not told.
  explicit DDAbstractLogger(std::shared_ptr<DDLogFormatter> formatter = nullptr);

  /// The formatter; on the logger's queue.
  DDLogFormatter* formatter() const { return formatter_.get(); }

  /// Queues a step on the logger's queue, behind what the logging queue holds now. The step has to
  /// keep the logger alive.
  void performOnLoggerQueue(platform::Block step);

  /// Runs `function` on the logger's queue, behind what the logging queue holds now, and returns
  /// what it returns.
  template <class F>
  auto waitOnLoggerQueue(const F& function) {
    return globalLoggingQueue().sync([&] { return loggerQueue()->sync(function); });
  }

 private:
  static platform::Queue& globalLoggingQueue();

  std::shared_ptr<DDLogFormatter> formatter_;  // touched on the logger's queue
  std::once_flag queueOnce_;                   // a name is known only once the subclass is made
  platform::QueueRef queue_;
};
