#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#ifdef ZARVO_HAVE_SQLITECPP
#include <SQLiteCpp/SQLiteCpp.h>
#endif

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "bench/AllocationCounter.h"
#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

// Everybody opens a connection by the same call, and does the same work on the same rows.

namespace {

constexpr int rows = 100'000;
constexpr const char* create = "create table t (id integer primary key, name text, size real)";
constexpr const char* insertion = "insert into t values (?, ?, ?)";
constexpr const char* selection = "select id, name, size from t";
constexpr const char* pointQuery = "select name from t where id = ?";
constexpr const char* fill =
    "with recursive n(i) as (select 1 union all select i + 1 from n where i < 100000) "
    "insert into t select i, 'the name of a row ' || i, i * 0.5 from n";
const std::string name = "the name of a row";

// What is read of a row goes in here.
struct Sum {
  std::int64_t ids = 0;
  std::size_t lengths = 0;
  double sizes = 0;

  void add(std::int64_t id, std::string_view text, double size) {
    ids += id;
    lengths += text.size() + static_cast<unsigned char>(text.front());
    sizes += size;
  }
};

void count(benchmark::State& state, std::int64_t items) {
  state.SetItemsProcessed(state.iterations() * items);
}

/// A path for a file with the rows.
const std::string& file() {
  static const support::TemporaryFolder folder;
  static const std::string path = [] {
    std::string result = folder.path("bench.db");
    const auto database = FMDatabase::databaseWithPath(result);
    database->open();
    database->executeUpdate(create);
    database->executeUpdate(fill);
    return result;
  }();
  return path;
}

/// Ours, with a table in memory or in a file.
std::shared_ptr<FMDatabase> ours(const char* path = nullptr) {
  auto database = FMDatabase::databaseWithPath(path);
  database->open();
  database->setShouldCacheStatements(true);
  if (!path) database->executeUpdate(create);
  return database;
}

/// Plain C.
class Plain {
 public:
  explicit Plain(const char* path = ":memory:") {
    sqlite3_open(path, &db_);
    if (std::string_view(path) == ":memory:") execute(create);
  }
  ~Plain() { sqlite3_close_v2(db_); }
  Plain(const Plain&) = delete;
  Plain& operator=(const Plain&) = delete;

  void execute(const char* sql) { sqlite3_exec(db_, sql, nullptr, nullptr, nullptr); }
  sqlite3_stmt* prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr);
    return statement;
  }

 private:
  sqlite3* db_ = nullptr;
};

void insert(benchmark::State& state) {
  const auto database = ours();
  long allocations = 0;
  for (auto _ : state) {
    database->beginTransaction();
    const long before = allocationCount();
    for (int i = 0; i < rows; ++i) database->executeUpdate(insertion, i, name, i * 0.5);
    allocations += allocationCount() - before;
    database->rollback();
  }
  count(state, rows);
  state.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations) / rows,
                                                     benchmark::Counter::kAvgIterations);
}
BENCHMARK(insert)->Unit(benchmark::kMillisecond);

void insertPlain(benchmark::State& state) {
  Plain plain;
  sqlite3_stmt* const statement = plain.prepare(insertion);
  for (auto _ : state) {
    plain.execute("begin exclusive transaction");
    for (int i = 0; i < rows; ++i) {
      sqlite3_bind_int(statement, 1, i);
      sqlite3_bind_text(statement, 2, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
      sqlite3_bind_double(statement, 3, i * 0.5);
      if (sqlite3_step(statement) != SQLITE_DONE) state.SkipWithError("step");
      sqlite3_reset(statement);
    }
    plain.execute("rollback transaction");
  }
  sqlite3_finalize(statement);
  count(state, rows);
}
BENCHMARK(insertPlain)->Unit(benchmark::kMillisecond);

template <class Read>
void readRows(benchmark::State& state, Read read) {
  const auto database = ours();
  database->executeUpdate(fill);
  long allocations = 0;
  for (auto _ : state) {
    Sum sum;
    const long before = allocationCount();
    for (const FMResultSet& row : database->executeQuery(selection)) read(sum, row);
    allocations += allocationCount() - before;
    benchmark::DoNotOptimize(sum);
  }
  count(state, rows);
  state.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations) / rows,
                                                     benchmark::Counter::kAvgIterations);
}

void readByIndex(benchmark::State& state) {
  readRows(state, [](Sum& sum, const FMResultSet& row) {
    sum.add(row.get<std::int64_t>(0), row.get<std::string_view>(1), row.get<double>(2));
  });
}
BENCHMARK(readByIndex)->Unit(benchmark::kMillisecond);

void readByName(benchmark::State& state) {
  readRows(state, [](Sum& sum, const FMResultSet& row) {
    sum.add(row.get<std::int64_t>("id"), row.get<std::string_view>("name"),
            row.get<double>("size"));
  });
}
BENCHMARK(readByName)->Unit(benchmark::kMillisecond);

void readPlain(benchmark::State& state) {
  Plain plain;
  plain.execute(fill);
  sqlite3_stmt* const statement = plain.prepare(selection);
  for (auto _ : state) {
    Sum sum;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const std::int64_t id = sqlite3_column_int64(statement, 0);
      const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 1));
      const auto length = static_cast<std::size_t>(sqlite3_column_bytes(statement, 1));
      sum.add(id, {text, length}, sqlite3_column_double(statement, 2));
    }
    sqlite3_reset(statement);
    benchmark::DoNotOptimize(sum);
  }
  sqlite3_finalize(statement);
  count(state, rows);
}
BENCHMARK(readPlain)->Unit(benchmark::kMillisecond);

// Keys in an order that a cache does not like.
int nextKey(int key) { return (key + 7919) % rows; }

void point(benchmark::State& state) {
  const auto database = ours(file().c_str());
  int key = 0;
  for (auto _ : state) {
    key = nextKey(key);
    const auto row = database->executeQuery(pointQuery, key + 1);
    if (!row->next()) state.SkipWithError("no row");
    benchmark::DoNotOptimize(row->get<std::string_view>(0));
  }
  count(state, 1);
}
BENCHMARK(point);

void pointPlain(benchmark::State& state) {
  Plain plain(file().c_str());
  sqlite3_stmt* const statement = plain.prepare(pointQuery);
  int key = 0;
  for (auto _ : state) {
    key = nextKey(key);
    sqlite3_bind_int(statement, 1, key + 1);
    if (sqlite3_step(statement) != SQLITE_ROW) state.SkipWithError("no row");
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(statement, 0));
    benchmark::DoNotOptimize(std::string_view(text, length));
    sqlite3_reset(statement);
  }
  sqlite3_finalize(statement);
  count(state, 1);
}
BENCHMARK(pointPlain);

#ifdef ZARVO_HAVE_SQLITECPP
const int flags = SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE;

void insertSQLiteCpp(benchmark::State& state) {
  SQLite::Database database(":memory:", flags);
  database.exec(create);
  SQLite::Statement statement(database, insertion);
  for (auto _ : state) {
    SQLite::Transaction transaction(database);
    for (int i = 0; i < rows; ++i) {
      statement.bind(1, i);
      statement.bind(2, name);
      statement.bind(3, i * 0.5);
      statement.exec();
      statement.reset();
    }
  }
  count(state, rows);
}
BENCHMARK(insertSQLiteCpp)->Unit(benchmark::kMillisecond);

template <class Read>
void readSQLiteCpp(benchmark::State& state, Read read) {
  SQLite::Database database(":memory:", flags);
  database.exec(create);
  database.exec(fill);
  SQLite::Statement statement(database, selection);
  for (auto _ : state) {
    Sum sum;
    while (statement.executeStep()) read(sum, statement);
    statement.reset();
    benchmark::DoNotOptimize(sum);
  }
  count(state, rows);
}

std::string_view view(const SQLite::Column& column) {
  const char* const text = column.getText();
  return {text, static_cast<std::size_t>(column.getBytes())};
}

void readByIndexSQLiteCpp(benchmark::State& state) {
  readSQLiteCpp(state, [](Sum& sum, SQLite::Statement& row) {
    sum.add(row.getColumn(0).getInt64(), view(row.getColumn(1)), row.getColumn(2).getDouble());
  });
}
BENCHMARK(readByIndexSQLiteCpp)->Unit(benchmark::kMillisecond);

void readByNameSQLiteCpp(benchmark::State& state) {
  readSQLiteCpp(state, [](Sum& sum, SQLite::Statement& row) {
    sum.add(row.getColumn("id").getInt64(), view(row.getColumn("name")),
            row.getColumn("size").getDouble());
  });
}
BENCHMARK(readByNameSQLiteCpp)->Unit(benchmark::kMillisecond);

void pointSQLiteCpp(benchmark::State& state) {
  SQLite::Database database(file(), flags);
  SQLite::Statement statement(database, pointQuery);
  int key = 0;
  for (auto _ : state) {
    key = nextKey(key);
    statement.bind(1, key + 1);
    if (!statement.executeStep()) state.SkipWithError("no row");
    benchmark::DoNotOptimize(view(statement.getColumn(0)));
    statement.reset();
  }
  count(state, 1);
}
BENCHMARK(pointSQLiteCpp);
#endif

}  // namespace
