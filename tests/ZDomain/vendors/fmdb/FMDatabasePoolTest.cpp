#include <thread>

#include <gmock/gmock.h>

#include "ZDomain/vendors/fmdb/FMDatabasePool.h"
#include "ZDomain/vendors/fmdb/FMDatabaseQueue.h"
#include "tests/support/RecordingConsole.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class Delegate : public FMDatabasePoolDelegate {
 public:
  bool databasePoolShouldAddDatabaseToPool(FMDatabasePool&, FMDatabase&) override {
    return raises ? throw 0 : accepts;
  }
  void databasePoolDidAddDatabase(FMDatabasePool&, FMDatabase& database) override {
    database.setMaxBusyRetryTimeInterval(120);
  }
  bool accepts = true;
  bool raises = false;
};

// Blocks that add 1 and end in three ways, in operations of three kinds, on three threads.
template <class Shared>
void useOnThreads(Shared& shared) {
  const auto use = [&] {
    for (int i = 0; i < 90; ++i) {
      const auto block = [&](FMDatabase* database, bool* rollback) {
        EXPECT_TRUE(database->executeUpdate("update t set a = a + 1"));
        *rollback = i / 3 % 3 == 1;
        if (i / 3 % 3 == 2) throw i;
      };
      try {
        if (i % 3 == 2) shared.inSavePoint(block);
        if (i % 3 != 2) shared.beginTransaction(i % 3 == 1, block);
      } catch (int) {
      }
    }
  };
  shared.inDatabase(
      [](FMDatabase* database) { database->executeUpdate("create table t as select 0 as a"); });
  std::thread threads[] = {std::thread(use), std::thread(use), std::thread(use)};
  for (std::thread& thread : threads) thread.join();
  shared.inDatabase(
      [](FMDatabase* database) { EXPECT_EQ(database->intForQuery("select a from t"), 3 * 30); });
}

}  // namespace

TEST(FMDatabasePool, LendsUpToItsMaximum) {
  const support::RecordingConsole console;
  const auto pool = FMDatabasePool::databasePoolWithPath();
  pool->setMaximumNumberOfDatabasesToCreate(2);
  const auto first = pool->db();
  const auto second = pool->db();
  EXPECT_TRUE(first->checkedOut());
  pool->inTransaction([&](FMDatabase* database, bool*) { EXPECT_EQ(database, nullptr); });
  EXPECT_EQ(console.lines().back(), "Maximum number of databases (2) has already been reached!");
  pool->pushDatabaseBackInPool(second);
  EXPECT_EQ(pool->db(), second);
  pool->pushDatabaseBackInPool(second);
  EXPECT_THAT([&] { pool->pushDatabaseBackInPool(second); },
              testing::Throws<FMDatabaseAlreadyInPoolException>(testing::AllOf(
                  testing::Property(&foundation::NSException::name, "Database already in pool"),
                  testing::Property(&foundation::NSException::reason,
                                    "The FMDatabase being put back into the pool is already "
                                    "present in the pool"))));
  EXPECT_EQ(pool->countOfOpenDatabases(), 2u);
  pool->releaseAllDatabases();
  EXPECT_EQ(pool->countOfOpenDatabases(), 0u);
  EXPECT_EQ(FMDatabasePool::databasePoolWithPath("/dev/null/a")->db(), nullptr);
  EXPECT_EQ(console.lines().back(), "Could not open up the database at path /dev/null/a");
}

TEST(FMDatabasePool, AsksItsDelegate) {
  const auto pool = FMDatabasePool::databasePoolWithPath();
  auto delegate = std::make_shared<Delegate>();
  pool->setDelegate(delegate);
  delegate->accepts = false;
  EXPECT_EQ(pool->db(), nullptr);
  delegate->raises = true;
  EXPECT_THROW(pool->db(), int);
  EXPECT_EQ(pool->countOfOpenDatabases(), 0u);
  // A connection that was used before stays among those that are lent out when it is refused.
  *delegate = Delegate();
  pool->pushDatabaseBackInPool(pool->db());
  delegate->accepts = false;
  EXPECT_EQ(pool->db(), nullptr);
  EXPECT_EQ(pool->countOfCheckedOutDatabases(), 1u);
  delegate.reset();
  EXPECT_NE(pool->db(), nullptr);
}

// The queue and the pool count for themselves. What fails last is the release.
TEST(FMDatabasePool, NumbersItsSavePoints) {
  const support::RecordingConsole console;
  const auto pool = FMDatabasePool::databasePoolWithPath();
  const auto queue = FMDatabaseQueue::databaseQueueWithPath();
  for (const std::string name : {"savePoint0", "savePoint1"}) {
    const auto release = [&](FMDatabase* database, bool*) {
      EXPECT_TRUE(database->executeUpdate("release savepoint " + name));
    };
    const std::string message = "no such savepoint: " + name;
    EXPECT_EQ(pool->inSavePoint(release)->localizedDescription(), message);
    EXPECT_EQ(queue->inSavePoint(release)->localizedDescription(), message);
  }
}

TEST(FMDatabasePool, IsSharedByThreads) {
  const support::TemporaryFolder folder(support::TemporaryFolder::inMemory());
  const auto delegate = std::make_shared<Delegate>();
  const auto pool = FMDatabasePool::databasePoolWithPath(folder.path("a.db"));
  pool->setDelegate(delegate);
  useOnThreads(*pool);
  EXPECT_EQ(pool->countOfCheckedOutDatabases(), 0u);
}

TEST(FMDatabaseQueue, IsSharedByThreads) {
  useOnThreads(*FMDatabaseQueue::databaseQueueWithPath());
}
