#include "foundation/NSException.h"
#include "tests/ZDomain/vendors/fmdb/DatabaseFixture.h"
#include "tests/support/TemporaryFolder.h"

using foundation::format;

namespace {

using FMDatabaseTest = DatabaseFixture;

TEST_F(FMDatabaseTest, WritesTheLinesOfUpdates) {
  EXPECT_TRUE(database->executeUpdate("create table t (a unique)", "extra"));
  EXPECT_TRUE(database->executeUpdate("insert into t values (?)", 1, "extra"));
  for (const char* sql : {"nonsense", "select ?, ?", "insert into t values (?)", "select a from t",
                          "select abs(-9223372036854775807 - 1)", ""}) {
    EXPECT_FALSE(database->executeUpdate(sql, 1)) << sql;
  }
  EXPECT_EQ(said(), R"(DB Error: 1 "near "nonsense": syntax error"
DB Query: nonsense
DB Path: (null)
Error: the bind count (1) is not correct for the # of variables in the query (2) (select ?, ?) (executeUpdate)
Unknown error calling sqlite3_step (19: UNIQUE constraint failed: t.a) eu
DB Query: insert into t values (?)
Unknown error finalizing or resetting statement (19: UNIQUE constraint failed: t.a)
DB Query: insert into t values (?)
Unknown error calling sqlite3_step (100: another row available) eu
DB Query: select a from t
Error calling sqlite3_step (1: integer overflow) SQLITE_ERROR
DB Query: select abs(-9223372036854775807 - 1)
Unknown error finalizing or resetting statement (1: integer overflow)
DB Query: select abs(-9223372036854775807 - 1)
Error calling sqlite3_step (21: not an error) SQLITE_MISUSE
DB Query: 
)");
}

TEST_F(FMDatabaseTest, WritesOtherLines) {
  EXPECT_FALSE(database->executeQuery(nullptr));
  EXPECT_FALSE(database->executeQueryWithArgumentsInArray("select ?, ?", {1}));
  EXPECT_TRUE(database->executeQueryWithParameterDictionary("select 1", {{"b", 1}}));
  const auto file = FMDatabase::databaseWithPath("/tmp/x");
  EXPECT_FALSE(file->readFromFile("/tmp/y") || FMDatabase::databaseWithPath()->writeToFile("y"));
  database->setBusyRetryTimeout(database->busyRetryTimeout());
  EXPECT_FALSE(file->executeUpdate("select 1"));
  EXPECT_EQ(said(), R"(DB Error: 0 "not an error"
DB Query: (null)
DB Path: (null)
Error: the bind count is not correct for the # of variables (executeQuery)
Could not find index for b
Database is not an in-memory representation.
Invalid database connection.
-[FMDatabase busyRetryTimeout]:221
FMDB: busyRetryTimeout no longer works, please use retryTimeout
-[FMDatabase setBusyRetryTimeout:]:227
FMDB: setBusyRetryTimeout does nothing, please use setRetryTimeout:
)" + format("The FMDatabase %@ is not open.\n", *file));
  database->setCrashOnErrors(true);
  EXPECT_DEATH(database->executeUpdate("nonsense"), "");
}

struct Nested : foundation::Object {
  FMDatabase* database = nullptr;
  std::string description() const override {
    return format("%d%d", database->executeUpdate("select 1"), database->changes());
  }
};

TEST_F(FMDatabaseTest, TracesAndRefusesNestedCalls) {
  const auto nested = std::make_shared<Nested>();
  nested->database = database.get();
  EXPECT_EQ(database->stringForQuery("select ?", nested), "00");
  const std::string line = format("The FMDatabase %@ is currently in use.\n", *database);
  EXPECT_EQ(said(), line + line);
  database->setTraceExecution(true);
  const Data data = {1, 2, 3};
  database->executeQuery("select ?, ?, ?, ?, ?", 'x', data, nullptr, Null(), "text");
  EXPECT_TRUE(database->executeUpdate("begin"));
  EXPECT_EQ(said(), format("%@ executeQuery: select ?, ?, ?, ?, ?\nobj: 120\ndata: 3 bytes\n"
                           "obj: (null)\nobj: <null>\nobj: text\n%@ executeUpdate: begin\n",
                           *database, *database));
}

TEST_F(FMDatabaseTest, GivesErrorsToThoseWhoAsk) {
  std::optional<Error> error;
  EXPECT_FALSE(database->updateWithErrorAndBindings("select 1", &error) || error);
  EXPECT_FALSE(database->hadError()) << "a row is no error";
  EXPECT_FALSE(database->updateWithErrorAndBindings("insert", &error));
  EXPECT_EQ(error, Error("FMDatabase", 1, "incomplete input"));
  EXPECT_FALSE(database->releaseSavePointWithName("a", &error));
  EXPECT_EQ(error, Error("FMDatabase", 1, "no such savepoint: a"));
}

TEST_F(FMDatabaseTest, ReusesCachedStatementsThatAreNotInUse) {
  database->setShouldCacheStatements(true);
  const std::string query = "select ? union all select 2";
  const auto first = database->executeQuery(query, 1), second = database->executeQuery(query, 1);
  FMStatement* const statement = first->statement();
  EXPECT_NE(statement, second->statement());
  while (first->next()) continue;
  while (sqlite3_step(statement->statement()) == SQLITE_ROW) continue;
  EXPECT_EQ(database->executeQuery(query, 1)->statement(), statement);
  EXPECT_TRUE(statement->description().ends_with("> 2 hit(s) for query " + query));
  EXPECT_FALSE(database->executeQuery(query));
  EXPECT_EQ(database->cachedStatements()->at(query).size(), 1U) << "a finalized one has left";
  database->setShouldCacheStatements(false);
  EXPECT_TRUE(second->next() && second->next() && !second->next()) << "the one in use goes on";
}

TEST_F(FMDatabaseTest, ClosesWhatIsOpenAndWhatLeaked) {
  const auto rows = database->executeQuery("select 1");
  database->executeQuery("select 3")->setParentDB(nullptr);
  sqlite3_stmt* leaked = nullptr;
  sqlite3_prepare_v2(database->sqliteHandle(), "select 2", -1, &leaked, nullptr);
  EXPECT_TRUE(rows->next() && database->close() && database->close());
  EXPECT_EQ(said(), "Closing leaked statement\n");
  EXPECT_FALSE(rows->intForColumnIndex(0) || rows->columnNameForIndex(0) || rows->next());
  EXPECT_TRUE(database->open() && database->goodConnection());
}

TEST_F(FMDatabaseTest, KeepsTheHandleOfAFailedOpening) {
  const auto bad = FMDatabase::databaseWithPath("/nonexistent/file.db");
  EXPECT_TRUE(!bad->open() && bad->openWithFlags(SQLITE_OPEN_READWRITE));
  EXPECT_EQ(said(), "error opening!: 14\n");
  EXPECT_FALSE(bad->goodConnection());
  EXPECT_STREQ(FMDatabase::databaseWithPath("")->sqlitePath(), "");
}

TEST_F(FMDatabaseTest, RollsBackSavepointsAndTransactions) {
  database->executeUpdate("create table t (a)");
  const auto insert = [&] { return database->executeUpdate("insert into t values (1)"); };
  EXPECT_FALSE(database->inSavePoint([&](bool*) { insert(); }));
  EXPECT_FALSE(database->inSavePoint([&](bool* shouldRollBack) { *shouldRollBack = insert(); }));
  EXPECT_THROW(database->inSavePoint([&](bool*) { throw insert(); }), bool);
  EXPECT_TRUE(database->startSavePointWithName("it's", nullptr) && insert());
  EXPECT_TRUE(database->rollbackToSavePointWithName("it's", nullptr) && database->rollback());
  EXPECT_TRUE(database->beginDeferredTransaction() && insert() && database->inTransaction());
  EXPECT_TRUE(database->rollback() && database->beginTransaction());
  EXPECT_FALSE(database->beginTransaction());
  EXPECT_TRUE(database->commit() && !database->inTransaction());
  EXPECT_EQ(database->intForQuery("select count(*) from t"), 1);
  EXPECT_TRUE(FMDatabase::databaseWithPath()->inSavePoint([](bool*) { FAIL(); }));
}

TEST_F(FMDatabaseTest, TurnsExceptionsOfFunctionsIntoErrors) {
  const auto half = [](sqlite3_context* context, int, sqlite3_value** arguments) {
    const int number = sqlite3_value_int(arguments[0]);
    if (number < 0) throw 5;
    if (number % 2 != 0) throw foundation::NSGenericException("odd");
    sqlite3_result_int(context, number / 2);
  };
  EXPECT_TRUE(database->makeFunctionNamed("half", 1, half));
  for (const int i : {42, 3, -1})
    EXPECT_EQ(database->intForQuery("select half(?)", i), i / 42 * 21);
  EXPECT_EQ(said(),
            "Error calling sqlite3_step (1: odd) rs\n"
            "Error calling sqlite3_step (1: unknown exception) rs\n");
}

TEST_F(FMDatabaseTest, CopiesADatabaseInMemory) {
  const support::TemporaryFolder folder;
  database->executeUpdate("create table t as select 42 as a");
  const std::string path = folder.path("a.db");
  EXPECT_TRUE(database->writeToFile(path) && database->executeUpdate("drop table t"));
  EXPECT_TRUE(database->readFromFile(path) && database->tableExists("T"));
  EXPECT_FALSE(database->writeToFile("/nonexistent/a.db"));
}

}  // namespace
