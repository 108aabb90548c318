#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "ZDomain/vendors/fmdb/FMDatabaseQueue.h"
#include "tests/support/RecordingConsole.h"
#include "tests/support/TemporaryFolder.h"

namespace {

void expectValue(FMDatabaseQueue& queue, int value) {
  queue.inDatabase(
      [&](FMDatabase* database) { EXPECT_EQ(database->intForQuery("select a from t"), value); });
}

std::shared_ptr<FMDatabaseQueue> queueWithTable(foundation::NullableText path = nullptr) {
  auto queue = FMDatabaseQueue::databaseQueueWithPath(path);
  queue->inDatabase([](FMDatabase* database) {
    EXPECT_TRUE(database->executeUpdate("create table t as select 0 as a"));
  });
  return queue;
}

void increment(FMDatabase* database, bool*) {
  EXPECT_TRUE(database->executeUpdate("update t set a = a + 1"));
}

// Runs `work` in a process of its own.
template <class Work>
pid_t startProcess(Work work) {
  const pid_t process = fork();
  if (process == 0) _exit((work(), testing::Test::HasFailure()));
  return process;
}

}  // namespace

// What is reopened is a plain connection to the path.
TEST(FMDatabaseQueue, ReopensAfterClose) {
  const support::RecordingConsole console;
  const support::TemporaryFolder folder;
  const std::string path = folder.path("a.db"), missing = folder.path("missing/a.db");
  struct Queue : FMDatabaseQueue {
    using FMDatabaseQueue::FMDatabaseQueue;
    DatabaseClass databaseClass() const override {
      return [](foundation::NullableText) { return FMDatabase::databaseWithPath("/dev/null/a"); };
    }
  };
  const auto queue = FMDatabaseQueue::databaseQueueWithPath<Queue>(path);
  queueWithTable(path);
  queue->close();
  expectValue(*queue, 0);
  queue->close();
  queue->setPath(missing);
  queue->inTransaction([&](FMDatabase* database, bool*) { EXPECT_EQ(database, nullptr); });
  const std::string code = "error opening!: 14";
  EXPECT_THAT(
      console.lines(),
      testing::ElementsAre(code, "Could not create database queue for path " + path, code,
                           "FMDatabaseQueue could not reopen database for path " + missing));
}

TEST(FMDatabaseQueue, WatchesItsBlocks) {
  const support::RecordingConsole console;
  const auto queue = queueWithTable();
  std::shared_ptr<FMResultSet> open;
  queue->inDatabase([&](FMDatabase* database) { open = database->executeQuery("select 1"); });
  EXPECT_THAT(console.lines(),
              testing::ElementsAre("Warning: there is at least one open result set around after "
                                   "performing [FMDatabaseQueue inDatabase:]"));
  EXPECT_DEATH(queue->inDatabase([&](FMDatabase*) { queue->close(); }), "would never return");
  EXPECT_DEATH(queue->inDatabase([&](FMDatabase*) { expectValue(*queue, 0); }),
               "\\(currentSyncQueue != self && \"inDatabase: was called reentrantly on the same "
               "queue, which would lead to a deadlock\"\\), "
               "ZDomain/vendors/fmdb/FMDatabaseQueue:143");
}

// Three processes write in turn; another is killed in mid-transaction, its changes in the file.
TEST(FMDatabaseQueue, SharesItsFileWithOtherProcesses) {
  const support::TemporaryFolder folder(support::TemporaryFolder::inMemory());
  const std::string path = folder.path("a.db");
  queueWithTable(path);
  for (int i = 0; i < 3; ++i) {
    startProcess([&] {
      const auto queue = FMDatabaseQueue::databaseQueueWithPath(path);
      queue->inDatabase([](FMDatabase* database) { database->setMaxBusyRetryTimeInterval(120); });
      for (int n = 0; n < 15; ++n) queue->inTransaction(increment);
    });
  }
  for (int status = 0; wait(&status) > 0;) EXPECT_EQ(status, 0);
  const pid_t writer = startProcess([&] {
    const auto queue = FMDatabaseQueue::databaseQueueWithPath(path);
    queue->inTransaction([&](FMDatabase* database, bool* rollback) {
      increment(database, rollback);
      database->executeUpdate("pragma cache_size = 2");
      for (int n = 0; n < 99; ++n) database->executeUpdate("insert into t values (zeroblob(9999))");
      raise(SIGSTOP);
    });
  });
  waitpid(writer, nullptr, WUNTRACED);
  EXPECT_EQ(access((path + "-journal").c_str(), F_OK), 0);
  kill(writer, SIGKILL);
  waitpid(writer, nullptr, 0);
  const auto queue = FMDatabaseQueue::databaseQueueWithPath(path);
  expectValue(*queue, 45);
  queue->inTransaction([](FMDatabase* database, bool* rollback) {
    EXPECT_EQ(database->stringForQuery("pragma integrity_check"), "ok");
    EXPECT_EQ(database->intForQuery("select count(*) from t"), 1);
    increment(database, rollback);
  });
}
