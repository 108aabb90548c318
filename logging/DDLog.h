#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <typeindex>
#include <vector>

#include "foundation/Format.h"
#include "foundation/NullableText.h"
#include "foundation/Value.h"
#include "logging/DDLogLevel.h"
#include "logging/DDLogMessage.h"
#include "logging/DDLogger.h"
#include "platform/Queue.h"

/// The dispatcher: takes messages from everywhere and hands them, one after the other, to every
/// logger whose level admits them.
///
/// Messages wait on one serial queue; each logger writes on a queue of its own. At most 1000
/// messages wait: the next caller blocks until one has been written. The dispatcher lives from its
/// first use to the end of the process and flushes every logger at exit; what static destructors
/// log after that is written before the call returns.
///
/// On a queue of the log's own (in a logger, a formatter) waiting for the log would never end.
/// There a message is always asynchronous and never waits for room, and flushing does nothing: a
/// logger that ends the process takes the messages behind the current one with it.
///
/// Log calls never throw. Call sites use the macros of DDLogMacros.h. Thread safety: any thread.
///
///     DDLog::addLogger(DDFileLogger::init());
///     DDLogInfo(__LINE__, "(%@) %d files.", THIS_FILE, count);
class DDLog {
 public:
  DDLog() = delete;

  /// The mask that call sites test first; 31 at start.
  static std::uint32_t globalLogLevel() { return globalLogLevel_.load(std::memory_order_relaxed); }
  static void setGlobalLogLevel(std::uint32_t level) { globalLogLevel_.store(level); }

  /// The serial queue that messages wait on, label "cocoa.quillwort". It carries a value under
  /// `loggingQueueKey`.
  static const platform::QueueRef& loggingQueue();
  static const void* loggingQueueKey();

  /// addLogger:withLogLevel:
  ///
  /// Registers a logger for the messages whose flag is in `logLevel`, after all messages logged
  /// before. A null logger is ignored; a logger added twice gets every message twice.
  static void addLogger(std::shared_ptr<DDLogger> logger,
                        std::uint32_t logLevel = DDLogLevel::verbose);

  /// Removes the first registration of a logger, if there is one, after all messages logged before.
  static void removeLogger(std::shared_ptr<DDLogger> logger);
  static void removeAllLoggers();

  /// log:level:flag:context:file:function:line:tag:format:
  ///
  /// Formats as `foundation::format` does, and logs. A null format logs nothing. `level` is the
  /// mask that the caller has tested `flag` against; nothing is tested here. `file` and `function`
  /// are not copied and have to outlive the message. A caller that is not asynchronous waits until
  /// every logger has written.
  template <class... Arguments>
  static void log(bool asynchronous, std::uint32_t level, std::uint32_t flag, std::int32_t context,
                  const char* file, const char* function, std::int32_t line,
                  const std::shared_ptr<foundation::Object>& tag, foundation::NullableText format,
                  const Arguments&... arguments) noexcept {
    if constexpr (sizeof...(arguments) == 0) {
      logArguments(asynchronous, level, flag, context, file, function, line, tag, format, {});
    } else {
      const foundation::FormatArgument list[] = {foundation::FormatArgument(arguments)...};
      logArguments(asynchronous, level, flag, context, file, function, line, tag, format, list);
    }
  }

  /// log:level:flag:context:file:function:line:tag:format:args:
  ///
  /// As `log`, with the arguments in a list.
  static void logArguments(bool asynchronous, std::uint32_t level, std::uint32_t flag,
                           std::int32_t context, const char* file, const char* function,
                           std::int32_t line, const std::shared_ptr<foundation::Object>& tag,
                           foundation::NullableText format,
                           std::span<const foundation::FormatArgument> arguments) noexcept;

  /// queueLogMessage:asynchronously:
  ///
  /// Logs a message made by the caller. Waits while 1000 messages wait.
  static void queueLogMessage(DDLogMessage message, bool asynchronously);

  /// Returns once all messages logged before are written and every logger has flushed.
  static void flushLog();

  /// Flushes; what ends the process in an orderly way calls it.
  static void applicationWillTerminate();

  /// Levels of single classes, see `DDRegisteredClass`. Classes come in no defined order.
  static bool isRegisteredClass(std::type_index type);
  static std::vector<std::type_index> registeredClasses();
  /// The classes' names as the source writes them, with their namespaces.
  static std::vector<std::string> registeredClassNames();

  /// The level of a class; all 32 bits for one that is not registered.
  static std::uint32_t logLevelForClass(std::type_index type);
  static std::uint32_t logLevelForClassWithName(std::string_view name);

  /// setLogLevel:forClass:, setLogLevel:forClassWithName:
  ///
  /// Set the level of a class; nothing happens to one that is not registered.
  static void setLogLevel(std::uint32_t level, std::type_index forClass);
  static void setLogLevel(std::uint32_t level, std::string_view forClassWithName);

 private:
  class Dispatcher;

  inline static constinit std::atomic<std::uint32_t> globalLogLevel_{DDLogLevel::verbose};
};
