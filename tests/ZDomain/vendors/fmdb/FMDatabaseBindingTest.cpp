#include <climits>
#include <cstdint>

#include "tests/ZDomain/vendors/fmdb/DatabaseFixture.h"

namespace {

static_assert(FMBindable<char[4]> && FMBindable<std::optional<std::string>>);
static_assert(FMBindable<std::nullptr_t> && FMBindable<std::vector<std::uint8_t>>);
static_assert(!FMBindable<const void*> && !FMBindable<std::vector<int>> && !FMBindable<int*>);

class FMDatabaseBindingTest : public DatabaseFixture {
 protected:
  // What SQLite sees of bound values, as literals.
  template <class... T>
  std::string bound(const T&... values) {
    return ((*database->stringForQuery("select quote(?)", values) + " ") + ...);
  }
};

TEST_F(FMDatabaseBindingTest, BindsByType) {
  enum class Colour : std::int16_t { red = 7 };
  const Date date(std::chrono::milliseconds(1'000'000'000'250));
  EXPECT_EQ(bound(nullptr, std::nullopt, Null(), std::optional<int>(), Value()),
            "NULL NULL NULL NULL NULL ");
  EXPECT_EQ(bound(true, 'x', std::int8_t{0}, Number('x'), std::uint8_t{200}, Colour::red),
            "1 1 0 1 200 7 ");
  EXPECT_EQ(bound(std::int16_t{-300}, UINT_MAX, INT64_MIN, UINT64_MAX),
            "-300 4294967295 -9223372036854775808 -1 ");
  EXPECT_EQ(bound(0.5f, std::optional<double>(1.0), date), "0.5 1.0 1000000000.25 ");
  EXPECT_EQ(bound("it's", std::string_view(), Array{1, "a"}), "'it''s' '' '(1, a)' ");
  EXPECT_EQ(bound(Error("domain", 1, "why"), Data{0x0a, 0xff}, Data()), "'why' X'0AFF' X'' ");
  database->setDateFormat(FMDatabase::storeableDateFormat("yyyy-MM-dd HH:mm:ss.SSS"));
  EXPECT_EQ(bound(date), "'2001-09-09 01:46:40.250' ");
  const auto rows = database->executeQuery("select ?", date);
  EXPECT_TRUE(rows->next() && !database->bindObject(Date(), 1, *rows->statement()));
  EXPECT_EQ(rows->get<Date>(0), date);
  EXPECT_EQ(database->dateForQuery("select 'no date'"), std::nullopt);
}

TEST_F(FMDatabaseBindingTest, TakesArgumentsFromEverywhere) {
  const FMArgument values[] = {2, "c", 4};
  FMArgumentList list(values);
  const Array array = {1};
  const auto rows = database->executeQueryWithArgumentsInArrayOrDictionaryOrVAList(
      "select ? || ? || ?", &array, nullptr, &list);
  EXPECT_EQ((*begin(rows)).get<std::string>(0), "12c");
  EXPECT_EQ(list.next()->value(), Value(4)) << "what is not needed stays in the list";
  const Dictionary named = {{"a", "x"}, {"b", 2}};
  EXPECT_TRUE(
      database->executeUpdateWithParameterDictionary("create table t as select :b || :a c", named));
  EXPECT_EQ(database->stringForQuery("select c from t"), "2x");
}

TEST_F(FMDatabaseBindingTest, KeepsWhatRowsRead) {
  const std::string sql = "select ?1, ?2 union all select ?1, ?2", text(1000, 'x');
  for (const bool caches : {false, true}) {
    database->setShouldCacheStatements(caches);
    int count = 0;
    for (FMResultSet& row : database->executeQuery(sql, std::string(text), Data(1000, 7))) {
      count += row.get<std::string>(0) == text && row.get<Data>(1) == Data(1000, 7);
    }
    EXPECT_EQ(count, 2);
  }
}

TEST_F(FMDatabaseBindingTest, LetsGoOfWhatAnUpdateBound) {
  database->setShouldCacheStatements(true);
  database->executeUpdate("create table t (a, b)");
  const std::string sql = "insert into t values (?, ?)";
  database->executeUpdate(sql, std::string(1000, 'x'), Data(1000, 7));
  EXPECT_FALSE(database->cachedStatementForQuery(sql)->isBorrowing());
  sqlite3_step(database->cachedStatementForQuery(sql)->statement());
  EXPECT_EQ(database->longForQuery("select sum(length(a)) from t"), 1000) << "once, then NULL";
}

struct Throwing : foundation::Object {
  std::string description() const override { throw std::runtime_error("no text"); }
};

TEST_F(FMDatabaseBindingTest, SurvivesWhatCannotBeBound) {
  database->setShouldCacheStatements(true);
  database->executeUpdate("create table t (a, b)");
  const std::string sql = "insert into t values (?, ?)", text(1000, 'x');
  const auto throwing = std::make_shared<Throwing>();
  for (int i = 0; i < 2; ++i) {
    EXPECT_THROW(database->executeUpdate(sql, text, throwing), std::exception);
  }
  sqlite3_limit(database->sqliteHandle(), SQLITE_LIMIT_LENGTH, 100);
  EXPECT_FALSE(database->executeUpdate(sql, text, 2)) << "longer than SQLite takes";
  EXPECT_TRUE(database->executeUpdate(sql, 1, 2));
  EXPECT_EQ(database->intForQuery("select count(*) from t"), 1);
}

TEST_F(FMDatabaseBindingTest, ConvertsFormats) {
  const struct {
    std::string format;
    std::vector<FMArgument> arguments;
    std::string expected;
  } cases[] = {
      {"%@, %@ %@", {"a", nullptr, Null()}, "?, NULL ? @a @<null>"},
      {"%c%s", {65, "text"}, "?? @A @text"},
      {"%d %D %i %u %U", {1, 2, 3, 4u, 5u}, "? ? ? ? ? i1 i2 i3 I4 I5"},
      {"%hi %hu %qi %qu", {70000, -1, 3LL, 4ULL}, "? ? ? ? s4464 S65535 q3 Q4"},
      {"%f %g", {0.1, 0.1}, "? ? d0.1 f0.1"},
      {"%ld %lu %lld %llu", {1L, 2UL, 3LL, 4ULL}, "? ? ? ? q1 Q2 q3 Q4"},
      {"100%% %x%h%lx %lly %q%", {}, "100% xhlx ly q"},
      {"%%d %%%", {5}, "%? %% i5"},
      {"%d %s %f %d", {5'000'000'000LL, 7, "x"}, "? ? ? NULL q5000000000 i7 @x"},
      {"like '%\u00FC'", {}, "like '\u00FC'"},
  };
  for (const auto& row : cases) {
    FMArgumentList list(row.arguments);
    std::string sql;
    Array objects;
    FMDatabase::extractSQL(row.format, list, sql, objects);
    for (const Value& object : objects) {
      const auto* const number = object.as<Number>();
      sql += std::string(" ") + (number ? number->objCType() : '@') + object.description();
    }
    EXPECT_EQ(sql, row.expected) << row.format;
  }
  EXPECT_TRUE(database->executeUpdateWithFormat("create table t as select %d a, %@ b", 5, nullptr));
  const auto rows = database->executeQueryWithFormat("select b from t where a = %@", 5);
  EXPECT_EQ((*begin(rows))[0], Value(Null()));
}

}  // namespace
