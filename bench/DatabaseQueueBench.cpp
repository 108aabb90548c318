#include <mutex>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "ZDomain/vendors/fmdb/FMDatabaseQueue.h"
#include "ZDomain/vendors/fmdb/FMSQLStatementSplitter.h"

namespace {

void prepare(FMDatabase* database) {
  database->setShouldCacheStatements(true);
  database->executeUpdate("create table t (id integer primary key, a)");
  for (int i = 0; i < 1000; ++i) database->executeUpdate("insert into t (a) values (?)", i);
}

// One operation: next to nothing, or a query by key.
void count(FMDatabase* database) { benchmark::DoNotOptimize(database->changes()); }

void query(FMDatabase* database) {
  benchmark::DoNotOptimize(database->intForQuery("select a from t where id = ?", 500));
}

using Operation = void (*)(FMDatabase*);

template <Operation operation>
void connection(benchmark::State& state) {
  const auto database = FMDatabase::databaseWithPath();
  database->open();
  prepare(database.get());
  for (auto _ : state) operation(database.get());
}
BENCHMARK(connection<count>);
BENCHMARK(connection<query>);

FMDatabaseQueue& sharedQueue() {
  static const auto queue = [] {
    auto made = FMDatabaseQueue::databaseQueueWithPath();
    made->inDatabase(prepare);
    return made;
  }();
  return *queue;
}

template <Operation operation>
void queue(benchmark::State& state) {
  FMDatabaseQueue& shared = sharedQueue();
  for (auto _ : state) shared.inDatabase(operation);
}
BENCHMARK(queue<count>);
BENCHMARK(queue<query>);
BENCHMARK(queue<count>)->Threads(4)->UseRealTime();
BENCHMARK(queue<query>)->Threads(4)->UseRealTime();

// A plain connection that threads share under a mutex.
template <Operation operation>
void peerMutex(benchmark::State& state) {
  static std::mutex mutex;
  static const auto database = [] {
    auto made = FMDatabase::databaseWithPath();
    made->open();
    prepare(made.get());
    return made;
  }();
  for (auto _ : state) {
    const std::lock_guard lock(mutex);
    operation(database.get());
  }
}
BENCHMARK(peerMutex<count>)->Threads(4)->UseRealTime();
BENCHMARK(peerMutex<query>)->Threads(4)->UseRealTime();

// 5 MB of SQL: a dump of rows with texts of all lengths, the same few rows over and over, and
// statements without a quote.
std::string batch(int kind) {
  std::mt19937 random(1);
  std::string sql;
  while (sql.size() < 5'000'000) {
    if (kind == 0) {
      sql += "insert into t values (" + std::to_string(random());
      for (auto values = random() % 5; values > 0; --values) {
        sql += random() % 2 ? ", " + std::to_string(random())
                            : ", '" + std::string(random() % 40, 'x') + "'";
      }
      sql += ");\n";
    } else if (kind == 1) {
      sql +=
          "INSERT INTO `track` (id, \"name\") VALUES (12345, 'it\\'s; http://example.com/a;b');\n";
    } else {
      sql += "create table if not exists t (id integer primary key, created datetime not null);\n";
    }
  }
  return sql;
}

void split(benchmark::State& state) {
  const std::string sql = batch(static_cast<int>(state.range(0)));
  const auto& splitter = FMSQLStatementSplitter::sharedInstance();
  for (auto _ : state) {
    benchmark::DoNotOptimize(splitter.statementsFromBatchSqlStatement(sql));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(sql.size()) * state.iterations());
}
BENCHMARK(split)->DenseRange(0, 2);

std::vector<std::string> plainSplit(const std::string& sql) {
  std::vector<std::string> statements;
  std::size_t start = 0;
  char quote = 0;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    const char c = sql[i];
    if (quote) {
      if (c == '\\') {
        ++i;
      } else if (c == quote) {
        quote = 0;
      }
    } else if (c == '\'' || c == '"' || c == '`') {
      quote = c;
    } else if (c == ';') {
      statements.push_back(sql.substr(start, i + 1 - start));
      start = i + 1;
    }
  }
  if (start < sql.size()) statements.push_back(sql.substr(start));
  return statements;
}

// A state machine over the characters, which does not know quotes without an end.
void peerStateMachine(benchmark::State& state) {
  const std::string sql = batch(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(plainSplit(sql));
  state.SetBytesProcessed(static_cast<std::int64_t>(sql.size()) * state.iterations());
}
BENCHMARK(peerStateMachine)->DenseRange(0, 2);

}  // namespace
