#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <regex.h>

#include "foundation/Format.h"
#include "logging/DDLog.h"
#include "logging/DDLogMessage.h"
#include "logging/DDTTYLogger.h"

namespace {

constexpr DDColor red{1, 0, 0};
constexpr DDColor blue{0, 0, 1};

class Tag : public foundation::Object {
 public:
  explicit Tag(int number) : number_(number) {}
  bool isEqual(const foundation::Object& other) const override {
    const auto* const tag = dynamic_cast<const Tag*>(&other);
    return tag && tag->number_ == number_;
  }

 private:
  int number_;
};

class Formatter : public DDLogFormatter {
 public:
  explicit Formatter(std::optional<std::string> text) : text_(std::move(text)) {}
  std::optional<std::string> formatLogMessage(const DDLogMessage&) override { return text_; }

 private:
  std::optional<std::string> text_;
};

/// Each case is a program of its own, so it may set what the program reads once.
class DDTTYLoggerTest : public testing::Test {
 protected:
  void useTerminal(const char* term) {
    ::setenv("TERM", term, 1);
    logger->setColorsEnabled(true);
  }

  // What arrives at the standard error stream.
  std::string written(std::uint32_t flag, std::int32_t context = 0,
                      std::shared_ptr<foundation::Object> tag = nullptr,
                      const std::string& text = "text") {
    logger->colorsEnabled();  // what was set before is in force
    testing::internal::CaptureStderr();
    DDLogMessage::Contents contents;
    contents.logMsg = text;
    contents.logFlag = flag;
    contents.logContext = context;
    contents.tag = std::move(tag);
    logger->loggerQueue()->sync([&] { logger->logMessage(DDLogMessage(contents)); });
    return testing::internal::GetCapturedStderr();
  }

  // As `written`, with the prefix left out.
  std::string colored(std::uint32_t flag, std::int32_t context = 0,
                      std::shared_ptr<foundation::Object> tag = nullptr) {
    logger->setLogFormatter(std::make_shared<Formatter>("x"));
    return written(flag, context, std::move(tag));
  }

  const std::shared_ptr<DDTTYLogger> logger = DDTTYLogger::sharedInstance();
};

}  // namespace

TEST_F(DDTTYLoggerTest, WritesTimeProgramProcessAndThread) {
  useTerminal("dumb");
  const std::string line = written(DDLogFlag::error);
  const std::string pattern =
      "^[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3} LoggingTests\\[" +
      foundation::format("%i", ::getpid()) + ":[0-9a-f]{1,8}\\] text\n$";
  regex_t expression;
  ASSERT_EQ(::regcomp(&expression, pattern.c_str(), REG_EXTENDED | REG_NOSUB), 0);
  EXPECT_EQ(::regexec(&expression, line.c_str(), 0, nullptr, 0), 0) << line;
  ::regfree(&expression);
  EXPECT_TRUE(written(DDLogFlag::error, 0, nullptr, "end\n").ends_with("] end\n"));
  const std::string large(10000, 'a');
  EXPECT_TRUE(written(DDLogFlag::error, 0, nullptr, large).ends_with("] " + large + "\n"));
}

TEST_F(DDTTYLoggerTest, WritesWhatAFormatterMadeAsItIs) {
  logger->setLogFormatter(std::make_shared<Formatter>("made"));
  EXPECT_EQ(written(DDLogFlag::info), "made\n");
  logger->setLogFormatter(std::make_shared<Formatter>(std::nullopt));
  EXPECT_EQ(written(DDLogFlag::info), "");
  logger->setLogFormatter(std::make_shared<Formatter>("text"));  // changes nothing
  EXPECT_TRUE(written(DDLogFlag::info).ends_with("] text\n"));
}

TEST_F(DDTTYLoggerTest, ColorsOnlyWhereEnabledAndShown) {
  ::setenv("TERM", "xterm-Color", 1);
  EXPECT_EQ(colored(DDLogFlag::error), "x\n");
  logger->setColorsEnabled(true);
  EXPECT_TRUE(logger->colorsEnabled());
  EXPECT_EQ(colored(DDLogFlag::error), "\033[31mx\n\033[0m");
  EXPECT_EQ(colored(DDLogFlag::warning), "\033[33mx\n\033[0m");
  EXPECT_EQ(colored(DDLogFlag::info), "x\n");
  logger->setColorsEnabled(false);
  EXPECT_EQ(colored(DDLogFlag::error), "x\n");
}

TEST_F(DDTTYLoggerTest, ColorsByTagThenByContextThenByFlag) {
  useTerminal("screen-256color");
  const auto any = DDTTYLoggerColorProfile::anyContext;
  logger->clearAllColors();
  logger->setForegroundColor(red, std::nullopt, DDLogFlag::error | DDLogFlag::info, any);
  logger->setForegroundColor(std::nullopt, blue, DDLogFlag::error, 7);
  logger->setForegroundColorForTag(red, red, std::make_shared<Tag>(1));
  const std::string flag = "\033[38;5;196mx\n\033[0m";
  const std::string context = "\033[48;5;19mx\n\033[0m";
  const std::string tag = "\033[38;5;196m\033[48;5;196mx\n\033[0m";
  EXPECT_EQ(colored(DDLogFlag::error, 1), flag);
  EXPECT_EQ(colored(DDLogFlag::error, 7), context);
  EXPECT_EQ(colored(DDLogFlag::info, 7), flag);
  EXPECT_EQ(colored(DDLogFlag::debug, 7), "x\n");
  EXPECT_EQ(colored(DDLogFlag::debug, 7, std::make_shared<Tag>(1)), tag);
  EXPECT_EQ(colored(DDLogFlag::debug, 7, std::make_shared<Tag>(2)), "x\n");
  logger->clearColorsForTag(std::make_shared<Tag>(1));
  logger->clearColorsForFlag(DDLogFlag::error, 7);
  EXPECT_EQ(colored(DDLogFlag::error, 7, std::make_shared<Tag>(1)), flag);
  logger->clearColorsForAllFlags();
  EXPECT_EQ(colored(DDLogFlag::error, 7), "x\n");
}

TEST(DDTTYColorTable, TakesTheNearestColorOfTheTerminal) {
  const struct {
    const char* term;
    DDColor color;
    std::string foreground;
    std::string background;
  } rows[] = {
      {"color", {0, 0, 0}, "30m", "40m"},
      {"color", {1, 1, 1}, "1;37m", "1;47m"},
      {"XTERM-COLOR", {0.76, 0.21, 0.13}, "31m", "41m"},
      {"xterm-256color", {1, 1, 1}, "38;5;231m", "48;5;231m"},
      {"xterm-256color", {47 / 255.0, 49 / 255.0, 49 / 255.0}, "38;5;16m", "48;5;16m"},
      {"xterm-256color", {0.5, 0.5, 0.5}, "38;5;244m", "48;5;244m"},
  };
  for (const auto& row : rows) {
    const DDTTYColorTable table(row.term);
    const std::size_t index = table.codeIndexForColor(row.color);
    EXPECT_EQ(table.foregroundCode(index), row.foreground) << row.term;
    EXPECT_EQ(table.backgroundCode(index), row.background) << row.term;
  }
  for (const char* const term : {static_cast<const char*>(nullptr), "vt100", "xterm-256"}) {
    EXPECT_TRUE(DDTTYColorTable(term).isEmpty());
    EXPECT_EQ(DDTTYColorTable(term).codeIndexForColor(red), 0U);
  }
}
