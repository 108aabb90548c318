#include "tests/ZDomain/vendors/fmdb/DatabaseFixture.h"

namespace {

using FMDatabaseAdditionsTest = DatabaseFixture;

TEST_F(FMDatabaseAdditionsTest, ReadsOneValue) {
  EXPECT_EQ(database->stringForQuery("select ? union all select 'b'", "a"), "a");
  EXPECT_EQ(database->longForQuery("select ?", 1LL << 40), 1LL << 40);
  EXPECT_EQ(database->intForQuery("select 1 where 0") + database->intForQuery("nonsense"), 0);
  EXPECT_EQ(database->dataForQuery("select x'0a'"), Data({10}));
  EXPECT_EQ(database->dateForQuery("select -0.5"), Date(std::chrono::milliseconds(-500)));
  EXPECT_FALSE(database->hasOpenResultSets());
}

TEST_F(FMDatabaseAdditionsTest, KnowsTheSchema) {
  database->executeUpdate("create table Person (Id integer, Name text)");
  database->executeUpdate("create temporary table other (a)");
  EXPECT_TRUE(database->tableExists("PERSON") && !database->tableExists("perso"));
  EXPECT_TRUE(database->columnExistsInTableWithName("NAME", "person"));
  EXPECT_FALSE(database->columnExistsColumnName("person", "age"));
  std::string names;
  for (FMResultSet& row : database->getSchema()) names += row.get<std::string>("tbl_name") + " ";
  EXPECT_EQ(names, "Person other ");
  EXPECT_FALSE(database->hasOpenResultSets());
}

TEST_F(FMDatabaseAdditionsTest, KeepsNumbersInTheHeader) {
  EXPECT_EQ(database->applicationIDString(), std::string(4, '\0'));
  database->setApplicationID(0xFFFEFDFC);
  EXPECT_EQ(database->applicationID(), 0xFFFEFDFCU);
  EXPECT_EQ(database->applicationIDString(), "\u00FF\u00FE\u00FD\u00FC");
  database->setApplicationIDString("Zd\u00E9!");
  EXPECT_EQ(database->applicationID(), 0x5A64E921U);
  EXPECT_EQ(said(), "");
  database->setApplicationIDString("a\u20ACc");
  EXPECT_EQ(database->applicationID(), 0x613F6300U);
  EXPECT_EQ(said(), "setApplicationIDString: string passed is not exactly 4 chars long. (was 3)\n");
  database->setUserVersion(0x80000001);
  EXPECT_EQ(database->userVersion(), 0x80000001);
}

TEST_F(FMDatabaseAdditionsTest, ValidatesStatements) {
  std::optional<Error> error;
  EXPECT_TRUE(database->validateSQL("create table t (a)", &error));
  EXPECT_FALSE(error || database->tableExists("t"));
  EXPECT_FALSE(database->validateSQL("create tabel", &error));
  EXPECT_EQ(error, Error("NSCocoaErrorDomain", 1, "near \"tabel\": syntax error"));
  EXPECT_FALSE(FMDatabase::databaseWithPath()->validateSQL(nullptr, nullptr));
}

}  // namespace
