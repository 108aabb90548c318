#include <gmock/gmock.h>

#include "logging/DDAbstractLogger.h"
#include "tests/support/RecordingLogger.h"

namespace {

using support::RecordingLogger;
using testing::ElementsAre;

/// Writes into a journal what it is told, and whether on the logger's queue.
class Formatter : public DDLogFormatter {
 public:
  Formatter(std::vector<std::string>& journal, std::string name)
      : journal_(journal), name_(std::move(name)) {}
  std::optional<std::string> formatLogMessage(const DDLogMessage& message) override {
    if (message.logMsg() == "drop") return std::nullopt;
    return name_ + message.logMsg();
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

TEST(DDAbstractLogger, HandsOverItsFormatter) {
  std::vector<std::string> journal;
  const auto a = std::make_shared<Formatter>(journal, "a");
  const auto b = std::make_shared<Formatter>(journal, "b");
  const auto logger = RecordingLogger::add();
  EXPECT_EQ(logger->logFormatter(), nullptr);
  for (const auto& formatter : {a, a, b, b, std::shared_ptr<Formatter>(), a}) {
    logger->setLogFormatter(formatter);
    EXPECT_EQ(logger->logFormatter(), formatter);
  }
  EXPECT_THAT(journal, ElementsAre("+a", "-a", "+b", "-b", "+a"));
  std::string text = "> ";
  EXPECT_FALSE(a->appendLogMessage(text, DDLogMessage({.logMsg = "drop"})));
  EXPECT_TRUE(a->appendLogMessage(text, DDLogMessage({.logMsg = "keep"})));
  EXPECT_EQ(text, "> akeep");
}

TEST(DDAbstractLogger, KnowsWhichQueueItIsOn) {
  const auto logger = RecordingLogger::add();
  EXPECT_EQ(logger->loggerName(), "support::RecordingLogger");
  EXPECT_EQ(*logger->loggerQueue()->label(), "support::RecordingLogger");
  EXPECT_EQ(*DDLog::loggingQueue()->label(), "cocoa.quillwort");
  EXPECT_EQ(logger->loggerQueue()->specific(logger.get()), logger.get());
  const auto where = [&] {
    return std::pair(logger->isOnGlobalLoggingQueue(), logger->isOnInternalLoggerQueue());
  };
  EXPECT_EQ(where(), std::pair(false, false));
  EXPECT_EQ(DDLog::loggingQueue()->sync(where), std::pair(true, false));
  EXPECT_EQ(logger->loggerQueue()->sync(where), std::pair(false, true));
}

}  // namespace
