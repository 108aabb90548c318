#include "logging/DDLogMessage.h"

#include <utility>

#include "foundation/Format.h"
#include "logging/DDSourceName.h"
#include "platform/Clock.h"
#include "platform/Process.h"
#include "platform/Queue.h"

namespace {

// A text that grew while it was made may hold twice its length; a waiting message must not.
constexpr std::size_t slackLimit = 128;

std::string withoutSlack(std::string text) {
  if (text.capacity() - text.size() > slackLimit) text.shrink_to_fit();
  return text;
}

std::shared_ptr<const std::string> currentQueueLabel() {
  const platform::Queue* const queue = platform::Queue::current();
  return queue ? queue->label() : nullptr;
}

}  // namespace

void DDLogMessage::SourceString::makePrivate() {
  if (!text || copy) return;
  copy = std::make_shared<const std::string>(text);
  text = copy->c_str();
}

DDLogMessage::Source::Source(const char* sourceFile, const char* sourceFunction,
                             std::uint32_t copyOptions)
    : file{sourceFile}, function{sourceFunction}, options(copyOptions) {
  if (options & copyFile) file.makePrivate();
  if (options & copyFunction) function.makePrivate();
}

DDLogMessage::Source::Source(const Source& other)
    : file(other.file), function(other.function), options(other.options) {
  if (!(options & copyFile)) return;
  file.makePrivate();
  function.makePrivate();
}

DDLogMessage::DDLogMessage(Contents contents)
    : logMsg_(withoutSlack(std::move(contents.logMsg))),
      timestamp_(platform::Clock::current().now()),
      source_(contents.file, contents.function, contents.options),
      queueLabel_(currentQueueLabel()),
      threadName_(platform::Process::threadName()),
      tag_(std::move(contents.tag)),
      logLevel_(contents.logLevel),
      logFlag_(contents.logFlag),
      logContext_(contents.logContext),
      lineNumber_(contents.lineNumber),
      machThreadID_(platform::Process::threadIdentifier()) {}

std::string DDLogMessage::threadID() const { return foundation::format("%x", machThreadID_); }

std::optional<std::string_view> DDLogMessage::fileName() const { return DDSourceName(file()); }

std::optional<std::string> DDLogMessage::methodName() const {
  return function() ? std::optional<std::string>(function()) : std::nullopt;
}
