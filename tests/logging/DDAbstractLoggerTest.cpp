#include <gmock/gmock.h>

#include "logging/DDAbstractLogger.h"
#include "tests/support/RecordingLogger.h"

namespace {

using support::RecordingLogger;

/// Writes into a journal what it is told, and whether on the logger's queue.
class Formatter : public DDLogFormatter {
 public:
  Formatter(std::vector<std::string>& journal, std::string name)
      : journal_(journal), name_(std::move(name)) {}
  std::optional<std::string> formatLogMessage(const DDLogMessage& message) override {
    return message.logMsg();
  }
  void didAddToLogger(DDLogger& logger) override { note("+", logger); }
  void willRemoveFromLogger(DDLogger& logger) override { note("-", logger); }

 private:
  void note(const char* what, DDLogger& logger) {
    const auto& base = dynamic_cast<DDAbstractLogger&>(logger);
    journal_.push_back(what + name_ + (base.isOnInternalLoggerQueue() ? "" : " elsewhere"));
  }

  std::vector<std::string>& journal_;
  const std::string name_;
};

TEST(DDAbstractLogger, HandsOverItsFormatterOnItsOwnQueue) {
  std::vector<std::string> journal;
  const auto a = std::make_shared<Formatter>(journal, "a");
  const auto b = std::make_shared<Formatter>(journal, "b");
  const auto logger = RecordingLogger::add();
  for (const auto& formatter : {a, a, b, b, std::shared_ptr<Formatter>(), a}) {
    logger->setLogFormatter(formatter);
    EXPECT_EQ(logger->logFormatter(), formatter);
  }
  EXPECT_THAT(journal, testing::ElementsAre("+a", "-a", "+b", "-b", "+a"));
  EXPECT_FALSE(logger->isOnInternalLoggerQueue());
  EXPECT_FALSE(logger->isOnGlobalLoggingQueue());
  EXPECT_TRUE(DDLog::loggingQueue()->sync([&] { return logger->isOnGlobalLoggingQueue(); }));
  EXPECT_EQ(*logger->loggerQueue()->label(), "support::RecordingLogger");
}

}  // namespace
