#include <errno.h>

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZCommons/System/ZCSSystemUtils.h"
#include "platform/ProcessTable.h"
#include "platform/Task.h"
#include "tests/support/RecordingLogger.h"

namespace {

using Lines = std::vector<std::string>;

/// Keeps the command lines, words joined by "|", and answers in order.
struct FakeTasks : platform::TaskRunner {
  int run(const platform::Task& task) override {
    std::string command = task.launchPath;
    for (const std::string& argument : task.arguments) command += "|" + argument;
    EXPECT_EQ(task.currentDirectoryPath, "");
    commands.push_back(command);
    return statuses.at(commands.size() - 1);
  }
  int runCapturingOutput(const platform::Task& task, foundation::Data& data) override {
    data.assign(output.begin(), output.end());
    return run(task);
  }

  std::string output;
  std::vector<int> statuses;
  Lines commands;
  const platform::TaskRunner::Replacement replacement{*this};
};

struct FakeProcessTable : platform::ProcessTable {
  using List = foundation::Result<std::vector<Entry>>;
  explicit FakeProcessTable(List processes) : list(std::move(processes)) {}
  List processes() override { return list; }

  const List list;
  const platform::ProcessTable::Replacement replacement{*this};
};

const std::string keychain = "/Library/Keychains/System.keychain";
const std::string search = "/bin/bash|-c|/usr/bin/security find-certificate -c \"My CA\" -Z -a " +
                           keychain + " | grep ^SHA-1";
const std::string searchLine =
    "4 186 (ZCSSystemUtils) Deleting certs from system keychain by name: \"My CA\"";

TEST(ZCSSystemUtils, RemovesEachCertificateOfTheName) {
  const struct {
    const char* what;
    std::string output;
    std::vector<int> statuses;  // of the search, then of each deletion
    Lines hashes;
    bool result;
  } cases[] = {
      {"none", "", {1}, {}, false},
      {"shell fails after output", "SHA-1 hash: A\n", {127}, {}, false},
      {"no output", "", {0}, {}, true},
      {"first fails", "SHA-1 hash: AB\nSHA-1 hash:\t CD \r\n", {0, 44, 0}, {"AB", "CD"}, true},
      {"second fails", "SHA-1 hash: AB\nSHA-1 hash: CD", {0, 0, 44}, {"AB", "CD"}, true},
      {"both fail", "SHA-1 hash: AB\nSHA-1 hash: CD\n", {0, 1, 44}, {"AB", "CD"}, false},
      {"no line of two pieces", "SHA-1\na:b:c\n\n", {0}, {}, false},
      {"an empty hash is one", "x:\n", {0, 0}, {""}, true},
      {"not UTF-8", "\xE4: AB\n", {0, 0}, {"AB"}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const auto log = support::RecordingLogger::add();
    FakeTasks tasks;
    tasks.output = c.output;
    tasks.statuses = c.statuses;
    Lines commands = {search};
    Lines lines = {searchLine};
    for (const std::string& hash : c.hashes) {
      const int status = c.statuses[commands.size()];
      commands.push_back("/usr/bin/security|delete-certificate|-Z|" + hash + "|" + keychain);
      lines.push_back("4 210 (ZCSSystemUtils) Exec security delete cert \"" + hash +
                      "\" result: " + std::to_string(status));
    }
    EXPECT_EQ(ZCSSystemUtils::removeCertFromSystemKeychainWithName("My CA"), c.result);
    EXPECT_EQ(tasks.commands, commands);
    EXPECT_EQ(log->numberedLines(), lines);
  }
}

TEST(ZCSSystemUtils, AddsATrustedRootInPlaceOfTheOld) {
  for (const int status : {0, 1}) {
    const auto log = support::RecordingLogger::add();
    FakeTasks tasks;
    tasks.statuses = {1, status};
    EXPECT_EQ(ZCSSystemUtils::addCertToSystemKeychainAsTrustedWithName("My CA", "/a b.pem"),
              status == 0);
    EXPECT_EQ(tasks.commands,
              (Lines{search, "/usr/bin/security|add-trusted-cert|-d|-r|trustRoot|-k|" + keychain +
                                 "|/a b.pem"}));
    EXPECT_EQ(
        log->numberedLines(),
        (Lines{"4 159 (ZCSSystemUtils) Adding cert to system keychain: \"My CA\" path: "
               "\"/a b.pem\"",
               searchLine,
               "4 177 (ZCSSystemUtils) Exec security add cert result: " + std::to_string(status)}));
  }
}

TEST(ZCSSystemUtils, RunsUtilities) {
  foundation::Data data = {1, 2, 3};
  EXPECT_EQ(ZCSSystemUtils::cliUtil("/bin/sh", {"-c", "pwd; exit 4"}, "/usr/bin", &data), 4);
  EXPECT_EQ(foundation::textOf(data), "/usr/bin\n");
  std::string text;
  ZCSSystemUtils::cliUtilOutput("/usr/bin/printf", {"\\303\\244"}, &text);
  EXPECT_EQ(text, "\u00e4");
  ZCSSystemUtils::cliUtilOutput("/usr/bin/printf", {"a\\344\\000"}, &text);
  EXPECT_EQ(text, std::string("a\u00e4\0", 4)) << "Latin-1";
  EXPECT_EQ(ZCSSystemUtils::cliUtilOutput("/bin/false", {}, nullptr), 1);

  EXPECT_THROW(ZCSSystemUtils::cliUtil("/nonexistent", {}, &data), platform::TaskLaunchException);
  EXPECT_THAT([] { ZCSSystemUtils::cliUtil(nullptr, {}, nullptr); },
              testing::ThrowsMessage<foundation::NSInvalidArgumentException>(
                  "Method argument error: utilPath"));
}

TEST(ZCSSystemUtils, ListsDirectChildrenOrLogsWhyNot) {
  const auto log = support::RecordingLogger::add();
  {
    const FakeProcessTable table({{{1, 0}, {7, 1}, {5, 7}, {6, 5}, {9, 7}}});
    EXPECT_EQ(ZCSSystemUtils::childPidsForPid(7), (std::vector<std::int32_t>{5, 9}));
    EXPECT_TRUE(ZCSSystemUtils::childPidsForPid(9).empty());
  }
  const FakeProcessTable unreadable(foundation::Error::posix(EACCES, "opendir /proc"));
  EXPECT_TRUE(ZCSSystemUtils::childPidsForPid(7).empty());
  EXPECT_THAT(log->numberedLines(),
              testing::ElementsAre(testing::MatchesRegex(
                  "1 225 \\(ZCSSystemUtils\\[0x[0-9a-f]+\\] childPidsForPid:\\) GetBSDProcessList: "
                  "Error obtaining process list. errno = 13")));
}

TEST(ZCSSystemUtilsDeathTest, AssertsThatAListExistsExactlyWithoutError) {
  const FakeProcessTable table(foundation::Error::posix(0, "opendir /proc"));
  EXPECT_DEATH(ZCSSystemUtils::childPidsForPid(7),
               "\\(\\(err == 0\\) == \\(\\*procList != NULL\\)\\), .*ZCSSystemUtils.cpp");
}

TEST(ZCSSystemUtils, MakesRandomUUIDs) {
  const std::string uuid = ZCSSystemUtils::createUUID();
  EXPECT_THAT(uuid, testing::MatchesRegex("[0-9A-F]{12}4[0-9A-F]{3}[89AB][0-9A-F]{15}"));
  EXPECT_NE(uuid, ZCSSystemUtils::createUUID());
}

TEST(ZCSSystemUtils, CallsOnTheMainQueue) {
  std::thread::id where;
  const auto note = [&where] { where = std::this_thread::get_id(); };
  ZCSSystemUtils::callOnMainQueue(note);  // the main thread is on it: no run loop is needed
  EXPECT_EQ(where, std::this_thread::get_id());

  where = {};
  std::thread other([note] {
    ZCSSystemUtils::callOnMainQueue(note);
    platform::MainQueue::stop();
  });
  platform::MainQueue::run();
  other.join();
  EXPECT_EQ(where, std::this_thread::get_id());
}

}  // namespace
