#include "tests/ZDomain/vendors/fmdb/DatabaseFixture.h"

namespace {

using FMResultSetTest = DatabaseFixture;

std::shared_ptr<FMResultSet> row(FMDatabase& database, const std::string& columns) {
  auto rows = database.executeQuery("select " + columns);
  EXPECT_TRUE(rows->next());
  return rows;
}

TEST_F(FMResultSetTest, ReadsEveryTypeAsEveryType) {
  const auto rows = row(*database, "4294967297 i, 1e300 r, 'a' || char(0) || 'b' t, x'' b, null n");
  EXPECT_EQ(rows->intForColumn("i"), 1);
  EXPECT_EQ(rows->dataForColumn("i")->size(), 10U) << "the bytes of its text";
  EXPECT_EQ(rows->longForColumn("r"), INT64_MAX);
  EXPECT_EQ(rows->stringForColumn("t"), std::string("a\0b", 3));
  EXPECT_STREQ(rows->UTF8StringForColumnName("t"), "a");
  EXPECT_TRUE(rows->dataNoCopyForColumn("b") && !rows->dataForColumn("n"));
  EXPECT_FALSE(rows->stringForColumn("n") || rows->dateForColumn("n"));
  const Array objects = {(*rows)["i"], (*rows)["r"], (*rows)["b"], (*rows)["n"]};
  EXPECT_EQ(objects, (Array{4294967297, 1e300, Data(), Null()}));
}

TEST_F(FMResultSetTest, ReadsIntoTypes) {
  const auto rows = row(*database, "-1 i, 'text' t, null n, 1700000000.123457 d");
  enum class Sign { negative = -1 };
  EXPECT_EQ(rows->get<std::uint64_t>("i"), UINT64_MAX);
  EXPECT_EQ(rows->get<Sign>(0), Sign::negative);
  EXPECT_EQ(rows->get<std::optional<std::int16_t>>(0), -1);
  EXPECT_EQ(rows->get<std::string>("n").append(rows->get<std::string_view>("t")), "text");
  EXPECT_FALSE(rows->get<std::optional<int>>("n") || rows->get<int>("n"));
  EXPECT_EQ(rows->get<Date>("d"), Date(std::chrono::microseconds(1'700'000'000'123'457)));
}

TEST_F(FMResultSetTest, FindsColumnsByName) {
  const auto rows = row(*database, "1 Name, 2 \"\u00C4\", 3 name, 4 other");
  for (const int other : {4, 0, 4}) {
    EXPECT_EQ(rows->intForColumn("NAME"), 3) << "the last of those with one name";
    EXPECT_EQ(rows->intForColumn("\u00E4"), 2);
    EXPECT_TRUE(other == 0 || rows->intForColumn("Other") == other);
  }
  EXPECT_EQ(rows->columnNameForIndex(0), "Name");
  EXPECT_FALSE(rows->columnNameForIndex(4) || rows->stringForColumn("Missing"));
  EXPECT_FALSE(database->hadError()) << "a missing name does not reach SQLite as a text";
  EXPECT_EQ(rows->intForColumn(nullptr), 0);
  EXPECT_EQ(database->lastErrorCode(), SQLITE_RANGE) << "but as a number it does";
  EXPECT_EQ(said(),
            "Warning: I could not find the column named 'missing'.\n"
            "Warning: I could not find the column named '(null)'.\n");
  EXPECT_EQ(rows->resultDictionary(),
            (Dictionary{{"Name", 1}, {"\u00C4", 2}, {"name", 3}, {"other", 4}}));
  EXPECT_EQ(rows->resultDict(), (Dictionary{{"name", 3}, {"\u00E4", 2}, {"other", 4}}));
}

TEST_F(FMResultSetTest, ClosesItselfAtTheEnd) {
  for (const char* sql : {"select 1 where 0", "nonsense"}) {
    for (FMResultSet& unexpected : database->executeQuery(sql)) FAIL() << unexpected.query();
  }
  const auto rows = database->executeQuery("select 1");
  EXPECT_FALSE(rows->resultDictionary());
  EXPECT_TRUE(said().ends_with("Warning: There seem to be no columns in this set.\n"));
  EXPECT_TRUE(rows->statement()->inUse() && rows->next() && !rows->next());
  EXPECT_FALSE(rows->statement() || database->hasOpenResultSets());
}

struct Person : foundation::KeyValueCoding {
  foundation::Dictionary properties;
  void setValueForKey(const std::optional<foundation::Value>& value,
                      std::string_view key) override {
    properties.emplace(key, *value);
  }
};

TEST_F(FMResultSetTest, FillsAnObject) {
  Person person;
  row(*database, "'Ada' Name, 36 age, null address")->kvcMagic(person);
  EXPECT_EQ(person.properties, (Dictionary{{"Name", "Ada"}, {"age", "36"}}));
}

}  // namespace
