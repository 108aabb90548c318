#include <thread>

#include <gmock/gmock.h>
#include <malloc.h>

#include "foundation/Format.h"
#include "logging/DDLogMessage.h"
#include "logging/DDLogMessagePool.h"
#include "logging/DDSourceName.h"
#include "platform/Block.h"
#include "platform/Process.h"
#include "platform/Queue.h"

namespace {

TEST(DDSourceName, IsTheFileNameWithoutFolderAndExtension) {
  struct {
    const char* path;
    const char* name;
  } const rows[] = {{"ZCommons/Files/ZCFFileUtils.cpp", "ZCFFileUtils"},
                    {"main.cpp", "main"},
                    {"/a/main", "main"},
                    {"main", "main"},
                    {"a.b.c", "a.b"},
                    {"a/.c", ""},
                    {"", ""},
                    {"a.d/main", "(null)"},
                    {nullptr, "(null)"}};
  for (const auto& row : rows) {
    EXPECT_EQ(foundation::format("%@", DDSourceName(row.path)), row.name);
  }
}

TEST(DDLogMessage, KnowsItsThreadAndQueue) {
  std::thread([] {
    platform::Process::setThreadName("worker");
    const DDLogMessage plain({.logMsg = "text"});
    EXPECT_STREQ(plain.queueLabel(), "");
    EXPECT_EQ(plain.threadName(), "worker");
    EXPECT_EQ(plain.threadID(), foundation::format("%x", platform::Process::threadIdentifier()));
    platform::Queue::serialQueue("store")->sync(
        [] { EXPECT_STREQ(DDLogMessage({.logMsg = "text"}).queueLabel(), "store"); });
  }).join();
}

// The caller's strings are overwritten: what then still reads as before is a copy.
TEST(DDLogMessage, CopiesTheStringsThatTheOptionsName) {
  struct {
    std::uint32_t options;
    const char* message;  // file and function as the message has them
    const char* copy;     // as a copy made before the change has them
  } const rows[] = {{0, "X/f.c X", "X/f.c X"},
                    {DDLogMessage::copyFile, "a/f.c X", "a/f.c g"},
                    {DDLogMessage::copyFunction, "X/f.c g", "X/f.c g"},
                    {3, "a/f.c g", "a/f.c g"}};
  for (const auto& row : rows) {
    char file[] = "a/f.c";
    char function[] = "g";
    const DDLogMessage message(
        {.logMsg = "text", .file = file, .function = function, .options = row.options});
    const auto copy = std::make_unique<DDLogMessage>(message);
    file[0] = function[0] = 'X';
    const auto strings = [](const DDLogMessage& m) {
      EXPECT_EQ(m.fileName(), "f");
      return foundation::format("%s %s", m.file(), *m.methodName());
    };
    EXPECT_EQ(strings(message), row.message) << row.options;
    EXPECT_EQ(strings(*copy), row.copy) << row.options;
  }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(DDLogMessage, CostsItsTextAndLittleMoreWhileItWaits) {
  DDLogMessagePool pool;
  constexpr std::size_t place = sizeof pool / 1024;
  const DDLogMessage first({.logMsg = "text"});
  for (const std::size_t length : {80U, 1000U, 100000U}) {
    std::string grown;
    while (grown.size() < length) grown += 'x';
    const std::size_t before = mallinfo2().uordblks - malloc_usable_size(grown.data());
    DDLogMessage message({.logMsg = std::move(grown)});
    const platform::Block block = [held = pool.hold(std::move(message))] {};
    const std::size_t taken = mallinfo2().uordblks - before + place + sizeof block;
    EXPECT_LE(taken, length + 512) << length;
  }
}
#endif

}  // namespace
