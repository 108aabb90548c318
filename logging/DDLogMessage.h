#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Date.h"
#include "foundation/Value.h"

/// One log event. Immutable; copies may be kept as long as one likes.
///
/// File and function are the caller's C strings and only pointed at, since they are literals almost
/// always; `options` asks for private copies. Private copies and the queue label lie in storage
/// that the copies of a message share. Takes at most 512 bytes more than its text while it waits.
///
/// Thread safety: any thread may read.
class DDLogMessage {
 public:
  /// Bits of `options`: the message keeps a copy of its own of the file, or of the function.
  static constexpr std::uint32_t copyFile = 1;
  static constexpr std::uint32_t copyFunction = 2;

  /// What the caller says; the message finds out the rest.
  struct Contents {
    std::string logMsg = {};
    std::uint32_t logLevel = 0;
    std::uint32_t logFlag = 0;
    std::int32_t logContext = 0;
    const char* file = nullptr;
    const char* function = nullptr;
    std::int32_t lineNumber = 0;
    std::shared_ptr<foundation::Object> tag = {};
    std::uint32_t options = 0;
  };

  /// Adds the time, and the calling thread and queue.
  explicit DDLogMessage(Contents contents);

  /// copyWithZone:
  ///
  /// With `copyFile` in the options the copy points at neither of the caller's strings.
  DDLogMessage(const DDLogMessage& other) = default;
  DDLogMessage(DDLogMessage&& other) noexcept = default;
  DDLogMessage& operator=(const DDLogMessage&) = delete;
  ~DDLogMessage() = default;

  /// The mask that the caller tested the flag against.
  std::uint32_t logLevel() const { return logLevel_; }
  /// One of `DDLogFlag`.
  std::uint32_t logFlag() const { return logFlag_; }
  std::int32_t logContext() const { return logContext_; }
  const std::string& logMsg() const { return logMsg_; }
  foundation::Date timestamp() const { return timestamp_; }
  /// Path of the source file, and name of the function there; null when the caller gave none.
  const char* file() const { return source_.file.text; }
  const char* function() const { return source_.function.text; }
  std::int32_t lineNumber() const { return lineNumber_; }
  /// The system's number of the thread that made the message.
  std::uint32_t machThreadID() const { return machThreadID_; }
  /// Label of the queue that the message was made on; empty when it was made on none.
  const char* queueLabel() const { return queueLabel_ ? queueLabel_->c_str() : ""; }
  /// Name of the thread that made the message; empty when it has none.
  const std::string& threadName() const { return threadName_; }
  const std::shared_ptr<foundation::Object>& tag() const { return tag_; }
  std::uint32_t options() const { return source_.options; }

  /// The thread's number as lower-case hexadecimal digits.
  std::string threadID() const;

  /// The short name of the source file, see `DDSourceName`; points into `file()`.
  std::optional<std::string_view> fileName() const;

  /// The function; nothing when the caller gave none.
  std::optional<std::string> methodName() const;

 private:
  /// A string of the caller's, or a copy of it.
  struct SourceString {
    void makePrivate();

    const char* text;
    std::shared_ptr<const std::string> copy = {};
  };

  struct Source {
    Source(const char* file, const char* function, std::uint32_t options);
    Source(const Source& other);
    Source(Source&& other) noexcept = default;

    SourceString file;
    SourceString function;
    std::uint32_t options;
  };

  std::string logMsg_;
  foundation::Date timestamp_;
  Source source_;
  std::shared_ptr<const std::string> queueLabel_;
  std::string threadName_;
  std::shared_ptr<foundation::Object> tag_;
  std::uint32_t logLevel_;
  std::uint32_t logFlag_;
  std::int32_t logContext_;
  std::int32_t lineNumber_;
  std::uint32_t machThreadID_;
};
