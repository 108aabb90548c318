#include "platform/FileSystem.h"
#include "platform/SimulatedClock.h"
#include "tests/ZDomain/vendors/fmdb/DatabaseFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace {

/// A clock on which every look takes half a second.
struct HurryingClock : platform::SimulatedClock {
  HurryingClock() : SimulatedClock(foundation::Date()) {}
  foundation::Date now() override {
    ++looks;
    advance(0.5);
    return SimulatedClock::now();
  }
  int looks = 0;
  const Replacement replacement{*this};
};

class FMDatabaseFileTest : public DatabaseFixture {
 protected:
  FMDatabaseFileTest() {
    ours->open();
    ours->executeUpdate("create table t (a)");
    ours->executeUpdate("insert into t values (1)");
    theirs->open();
    EXPECT_EQ(state(*theirs), "ok 1");
  }

  static bool insert(FMDatabase& connection) {
    return connection.executeUpdate("insert into t values (randomblob(20000))");
  }
  static std::string failed(const std::string& reason) {
    const std::string query = "DB Query: insert into t values (randomblob(20000))\n";
    return "Unknown error calling sqlite3_step (" + reason + ") eu\n" + query +
           "Unknown error finalizing or resetting statement (" + reason + ")\n" + query;
  }
  static std::string state(FMDatabase& connection) {
    return *connection.stringForQuery("pragma integrity_check") + " " +
           *connection.stringForQuery("select count(*) from t");
  }

  const support::TemporaryFolder folder{support::TemporaryFolder::inMemory()};
  const std::string path = folder.path("a.db");
  const std::shared_ptr<FMDatabase> ours = FMDatabase::databaseWithPath(path);
  const std::shared_ptr<FMDatabase> theirs = FMDatabase::databaseWithPath(path);
};

TEST_F(FMDatabaseFileTest, WaitsForALock) {
  HurryingClock clock;
  EXPECT_TRUE(ours->beginTransaction());
  EXPECT_FALSE(insert(*theirs));
  EXPECT_EQ(clock.looks, 5) << "at the start, and until 2 seconds have passed";
  EXPECT_EQ(said(), failed("5: database is locked"));
  theirs->setMaxBusyRetryTimeInterval(0);
  ours->commit();
  const auto rows = theirs->executeQuery("select a from t");
  ours->beginTransaction();
  EXPECT_FALSE(rows->next());
  EXPECT_EQ(clock.looks, 5);
  EXPECT_EQ(said(), "-[FMResultSet next]:156 Database busy (" + path + ")\nDatabase busy\n");
  EXPECT_TRUE(ours->commit());
  EXPECT_EQ(state(*theirs), "ok 1");
}

TEST_F(FMDatabaseFileTest, GoesOnAfterAFailedWrite) {
  ours->intForQuery("pragma max_page_count = 4");
  EXPECT_FALSE(insert(*ours));
  EXPECT_EQ(said(), failed("13: database or disk is full"));
  ours->close(), ours->openWithFlags(SQLITE_OPEN_READONLY);
  EXPECT_FALSE(insert(*ours));
  EXPECT_EQ(said(), failed("8: attempt to write a readonly database"));
  EXPECT_TRUE(state(*ours) == "ok 1" && ours->close() && ours->open() && insert(*ours));
}

TEST_F(FMDatabaseFileTest, TellsACorruptFile) {
  ours->close();
  const std::string noise(8192, 'x');
  ASSERT_TRUE(platform::FileSystem::writeFileAtomically(path, foundation::dataOf(noise)));
  EXPECT_TRUE(ours->open());
  EXPECT_FALSE(ours->goodConnection());
  EXPECT_TRUE(said().ends_with("DB Path: " + path + "\n"));
  EXPECT_EQ(ours->lastError(), Error("FMDatabase", 26, "file is not a database"));
}

}  // namespace
