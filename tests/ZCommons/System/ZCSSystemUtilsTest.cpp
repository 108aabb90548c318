#include <errno.h>
#include <unistd.h>

#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZCommons/System/ZCSSystemUtils.h"
#include "foundation/NSException.h"
#include "platform/ProcessTable.h"
#include "platform/Task.h"
#include "tests/support/RecordingLogger.h"

namespace {

using Lines = std::vector<std::string>;

/// Keeps the command lines, words joined by "|", and answers in order.
class FakeTasks : public platform::TaskRunner {
 public:
  int run(const platform::Task& task) override {
    commands.push_back(task.launchPath);
    for (const std::string& argument : task.arguments) commands.back() += "|" + argument;
    EXPECT_EQ(task.currentDirectoryPath, "");
    const int status = statuses.empty() ? 0 : statuses.front();
    if (!statuses.empty()) statuses.erase(statuses.begin());
    return status;
  }
  int runCapturingOutput(const platform::Task& task, foundation::Data& data) override {
    const auto bytes = foundation::dataOf(output);
    data.assign(bytes.begin(), bytes.end());
    return run(task);
  }

  Lines commands;
  std::string output;
  std::vector<int> statuses;

 private:
  const platform::TaskRunner::Replacement replacement_{*this};
};

class FakeProcessTable : public platform::ProcessTable {
 public:
  using List = foundation::Result<std::vector<Entry>>;
  explicit FakeProcessTable(List list) : list_(std::move(list)) {}
  List processes() override { return list_; }

 private:
  const List list_;
  const platform::ProcessTable::Replacement replacement_{*this};
};

const std::string search =
    "/bin/bash|-c|/usr/bin/security find-certificate -c \"My CA\" -Z -a "
    "/Library/Keychains/System.keychain | grep ^SHA-1";
const std::string searchLine =
    "4 (ZCSSystemUtils) Deleting certs from system keychain by name: \"My CA\"";

std::string deletion(const std::string& hash) {
  return "/usr/bin/security|delete-certificate|-Z|" + hash + "|/Library/Keychains/System.keychain";
}

std::string deletionLine(const std::string& hash, int status) {
  return "4 (ZCSSystemUtils) Exec security delete cert \"" + hash +
         "\" result: " + std::to_string(status);
}

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
      {"one", "SHA-1 hash: AB\n", {0, 0}, {"AB"}, true},
      {"two, the first fails",
       "SHA-1 hash: AB\nSHA-1 hash:\t CD \r\n",
       {0, 44, 0},
       {"AB", "CD"},
       true},
      {"two, the second fails", "SHA-1 hash: AB\nSHA-1 hash: CD", {0, 0, 44}, {"AB", "CD"}, true},
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
    for (std::size_t i = 0; i < c.hashes.size(); ++i) {
      commands.push_back(deletion(c.hashes[i]));
      lines.push_back(deletionLine(c.hashes[i], c.statuses[i + 1]));
    }
    EXPECT_EQ(ZCSSystemUtils::removeCertFromSystemKeychainWithName("My CA"), c.result);
    EXPECT_EQ(tasks.commands, commands);
    EXPECT_EQ(log->lines(), lines);
    const auto messages = log->messages();
    for (std::size_t i = 0; i < messages.size(); ++i) {
      EXPECT_EQ(messages[i].lineNumber(), i == 0 ? 186 : 210);
    }
    DDLog::removeLogger(log);
  }
}

TEST(ZCSSystemUtils, AddsATrustedRootInPlaceOfTheOld) {
  for (const int status : {0, 1}) {
    const auto log = support::RecordingLogger::add();
    FakeTasks tasks;
    tasks.statuses = {1, status};
    EXPECT_EQ(ZCSSystemUtils::addCertToSystemKeychainAsTrustedWithName("My CA", "/tmp/a b.pem"),
              status == 0);
    EXPECT_EQ(tasks.commands, (Lines{search,
                                     "/usr/bin/security|add-trusted-cert|-d|-r|trustRoot|-k|"
                                     "/Library/Keychains/System.keychain|/tmp/a b.pem"}));
    EXPECT_EQ(
        log->lines(),
        (Lines{"4 (ZCSSystemUtils) Adding cert to system keychain: \"My CA\" path: "
               "\"/tmp/a b.pem\"",
               searchLine,
               "4 (ZCSSystemUtils) Exec security add cert result: " + std::to_string(status)}));
    EXPECT_EQ(log->messages()[0].lineNumber(), 159);
    EXPECT_EQ(log->messages()[2].lineNumber(), 177);
    DDLog::removeLogger(log);
  }
}

TEST(ZCSSystemUtils, RunsUtilities) {
  foundation::Data data = {1, 2, 3};
  EXPECT_EQ(ZCSSystemUtils::cliUtil("/bin/sh", {"-c", "pwd; exit 4"}, "/usr/bin", &data), 4);
  EXPECT_EQ(foundation::textOf(data), "/usr/bin\n");
  EXPECT_EQ(ZCSSystemUtils::cliUtil("/bin/true", {}, &data), 0);
  EXPECT_TRUE(data.empty());
  EXPECT_EQ(ZCSSystemUtils::cliUtil("/bin/false", {}, "", nullptr), 1);

  std::string text;
  ZCSSystemUtils::cliUtilOutput("/usr/bin/printf", {"\\303\\244"}, &text);
  EXPECT_EQ(text, "\u00e4");
  ZCSSystemUtils::cliUtilOutput("/usr/bin/printf", {"a\\344\\000"}, &text);
  EXPECT_EQ(text, std::string("a\u00e4\0", 4)) << "Latin-1";
  EXPECT_EQ(ZCSSystemUtils::cliUtilOutput("/bin/false", {}, nullptr), 1);

  EXPECT_THROW(ZCSSystemUtils::cliUtil("/nonexistent", {}, &data), platform::TaskLaunchException);
  try {
    ZCSSystemUtils::cliUtil(nullptr, {}, nullptr);
    ADD_FAILURE();
  } catch (const foundation::NSInvalidArgumentException& exception) {
    EXPECT_EQ(exception.reason(), "Method argument error: utilPath");
  }
}

TEST(ZCSSystemUtils, ListsDirectChildren) {
  const FakeProcessTable table({{{1, 0}, {7, 1}, {5, 7}, {6, 5}, {9, 7}}});
  const auto log = support::RecordingLogger::add();
  EXPECT_EQ(ZCSSystemUtils::childPidsForPid(7), (std::vector<std::int32_t>{5, 9}));
  EXPECT_TRUE(ZCSSystemUtils::childPidsForPid(9).empty());
  EXPECT_TRUE(ZCSSystemUtils::childPidsForPid(1000).empty());
  EXPECT_TRUE(log->lines().empty());
  DDLog::removeLogger(log);
}

TEST(ZCSSystemUtils, LogsAnUnreadableProcessTable) {
  const FakeProcessTable table(foundation::Error::posix(EACCES, "opendir /proc"));
  const auto log = support::RecordingLogger::add();
  EXPECT_TRUE(ZCSSystemUtils::childPidsForPid(7).empty());
  EXPECT_THAT(
      log->lines(),
      testing::ElementsAre(testing::MatchesRegex(
          "1 \\(ZCSSystemUtils\\[0x[0-9a-f]+\\] childPidsForPid:\\) GetBSDProcessList: Error "
          "obtaining process list. errno = 13")));
  EXPECT_EQ(log->messages()[0].lineNumber(), 225);
  DDLog::removeLogger(log);
}

TEST(ZCSSystemUtilsDeathTest, AssertsThatAListExistsExactlyWithoutError) {
  const FakeProcessTable table(foundation::Error::posix(0, "opendir /proc"));
  EXPECT_DEATH(ZCSSystemUtils::childPidsForPid(7),
               "\\(\\(err == 0\\) == \\(\\*procList != NULL\\)\\), .*ZCSSystemUtils.cpp");
}

TEST(ZCSSystemUtils, MakesRandomUUIDs) {
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string uuid = ZCSSystemUtils::createUUID();
    EXPECT_THAT(uuid, testing::MatchesRegex("[0-9A-F]{12}4[0-9A-F]{3}[89AB][0-9A-F]{15}"));
    EXPECT_TRUE(seen.insert(uuid).second);
  }
}

TEST(ZCSSystemUtils, CallsOnTheMainQueue) {
  using platform::Queue;
  std::thread::id where;
  const auto note = [&where] {
    EXPECT_EQ(Queue::current(), Queue::mainQueue().get());
    where = std::this_thread::get_id();
  };
  ZCSSystemUtils::callOnMainQueue(note);  // the main thread is on it: no run loop is needed
  EXPECT_EQ(where, std::this_thread::get_id());

  where = {};
  std::thread other([&] {
    ZCSSystemUtils::callOnMainQueue(note);
    EXPECT_THROW(ZCSSystemUtils::callOnMainQueue([] { throw std::runtime_error("x"); }),
                 std::runtime_error);
    platform::MainQueue::stop();
  });
  platform::MainQueue::run();
  other.join();
  EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(ZCSSystemUtils, RootPrivilegesFollowTheEffectiveUser) {
  EXPECT_EQ(ZCSSystemUtils::rootPrivileges(), geteuid() == 0);
  if (geteuid() != 0) return;
  ASSERT_EQ(seteuid(65534), 0);
  EXPECT_FALSE(ZCSSystemUtils::rootPrivileges());
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_TRUE(ZCSSystemUtils::rootPrivileges());
}

}  // namespace
