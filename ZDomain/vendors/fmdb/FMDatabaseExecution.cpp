#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>

#include <sqlite3.h>

#include "ZDomain/vendors/fmdb/FMArgumentBinder.h"
#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "platform/Console.h"

using foundation::Array;
using foundation::Dictionary;
using foundation::NullableText;
using platform::Console;

namespace {

/// Lets go of what an update borrowed from its caller, whichever way it ends.
class BorrowedBindings {
 public:
  explicit BorrowedBindings(FMStatement& statement) : statement_(statement) {}
  ~BorrowedBindings() {
    if (statement_.isBorrowing()) statement_.clearBindings();
  }
  BorrowedBindings(const BorrowedBindings&) = delete;
  BorrowedBindings& operator=(const BorrowedBindings&) = delete;

 private:
  FMStatement& statement_;
};

// Bytes of a text or data up to which an update copies it: that costs less than to let go of it.
constexpr std::size_t updateCopyLimit = 256;

// The lines stand in functions of their own, out of the way of what runs without a line.

[[gnu::cold]] void traceCall(std::string_view format, const FMDatabase& database,
                             const NullableText& sql) {
  if (!sql.isNull()) Console::log(format, database, sql);
}

[[gnu::cold]] void logBindCount(int bound, int count, const NullableText& sql) {
  Console::log(
      "Error: the bind count (%d) is not correct for the # of variables in the query (%d) (%@) "
      "(executeUpdate)",
      bound, count, sql);
}

}  // namespace

/// One call on the connection, which is marked as executing for its length; converts to false, with
/// a line, when it is marked already.
class FMDatabase::Execution {
 public:
  explicit Execution(FMDatabase& database)
      : database_(database), isOurs_(!database.isExecutingStatement_.load(relaxed)) {
    if (isOurs_) {
      database.isExecutingStatement_.store(true, relaxed);
    } else {
      database.warnInUse();
    }
  }
  ~Execution() {
    if (isOurs_) database_.isExecutingStatement_.store(false, relaxed);
  }
  Execution(const Execution&) = delete;
  Execution& operator=(const Execution&) = delete;

  explicit operator bool() const { return isOurs_; }

  /// A statement of the text: a cached one, or a new one. Null, with lines, when it cannot be
  /// prepared.
  std::shared_ptr<FMStatement> statementFor(const NullableText& sql, ErrorPlace error) {
    if (const auto* const cached = cachedStatement(sql)) return *cached;
    isNew_ = true;
    return prepare(sql, error);
  }

  /// Puts a new statement into the cache, when there is one.
  void cache(const std::shared_ptr<FMStatement>& statement, const NullableText& sql) const {
    if (isNew_ && database_.shouldCacheStatements_) database_.setCachedStatement(statement, sql);
  }

  /// Runs an update; its code, with lines for everything but the end.
  int step(const FMStatement& statement, const NullableText& sql) const {
    const int code = sqlite3_step(statement.statement());
    if (code != SQLITE_DONE && database_.logsErrors_) logStep(code, sql);
    return code;
  }

  /// Makes the statement ready for its next use, or finalizes it when it is not cached.
  void finish(FMStatement& statement, const NullableText& sql) const {
    const int code = database_.shouldCacheStatements_ ? statement.reset() : statement.close();
    if (code != SQLITE_OK && database_.logsErrors_) logFinish(code, sql);
  }

 private:
  static constexpr auto relaxed = std::memory_order_relaxed;

  const std::shared_ptr<FMStatement>* cachedStatement(const NullableText& sql) const;
  std::shared_ptr<FMStatement> prepare(const NullableText& sql, ErrorPlace error) const;
  [[gnu::cold]] void logStep(int code, const NullableText& sql) const;
  [[gnu::cold]] void logFinish(int code, const NullableText& sql) const;

  FMDatabase& database_;
  const bool isOurs_;
  bool isNew_ = false;
};

const std::shared_ptr<FMStatement>* FMDatabase::Execution::cachedStatement(
    const NullableText& sql) const {
  if (!database_.shouldCacheStatements_) return nullptr;
  const auto* const statement = database_.findCachedStatement(sql.view());
  if (!statement) return nullptr;
  // Whoever used it last has reset it; only who steps the handle behind our back has not.
  if (sqlite3_stmt_busy((*statement)->statement())) (*statement)->reset();
  if ((*statement)->statement()) return statement;
  database_.discard(**statement, sql);
  return nullptr;
}

std::shared_ptr<FMStatement> FMDatabase::Execution::prepare(const NullableText& sql,
                                                            ErrorPlace error) const {
  sqlite3_stmt* statement = nullptr;
  if (database_.prepare(sql, &statement) == SQLITE_OK) {
    return std::make_shared<FMStatement>(statement);
  }
  if (database_.logsErrors_) {
    Console::log("DB Error: %d \"%@\"", database_.lastErrorCode(), database_.lastErrorMessage());
    Console::log("DB Query: %@", sql);
    Console::log("DB Path: %@", database_.databasePath_);
  }
  if (database_.crashOnErrors_) std::abort();
  if (error) *error = database_.lastError();
  return nullptr;
}

void FMDatabase::Execution::logStep(int code, const NullableText& sql) const {
  const char* const message = sqlite3_errmsg(database_.db_);
  switch (code) {
    case SQLITE_ERROR:
      Console::log("Error calling sqlite3_step (%d: %s) SQLITE_ERROR", code, message);
      break;
    case SQLITE_MISUSE:
      Console::log("Error calling sqlite3_step (%d: %s) SQLITE_MISUSE", code, message);
      break;
    default:  // a row is no success either
      Console::log("Unknown error calling sqlite3_step (%d: %s) eu", code, message);
  }
  Console::log("DB Query: %@", sql);
}

void FMDatabase::Execution::logFinish(int code, const NullableText& sql) const {
  Console::log("Unknown error finalizing or resetting statement (%d: %s)", code,
               sqlite3_errmsg(database_.db_));
  Console::log("DB Query: %@", sql);
}

int FMDatabase::prepare(NullableText sql, sqlite3_stmt** statement) const {
  const std::string_view text = sql.view();
  const char* const start = text.data() || sql.isNull() ? text.data() : "";
  const auto length = static_cast<int>(std::min<std::size_t>(text.size(), INT_MAX));
  return sqlite3_prepare_v2(db_, start, length, statement, nullptr);
}

std::shared_ptr<FMResultSet> FMDatabase::executeQueryWithArgumentsInArrayOrDictionaryOrVAList(
    NullableText sql, const Array* argumentsInArray, const Dictionary* orDictionary,
    FMArgumentList* orVAList) {
  if (!db_ && !databaseExists()) return nullptr;
  Execution execution(*this);
  if (!execution) return nullptr;
  if (traceExecution_) traceCall("%@ executeQuery: %@", *this, sql);
  const auto statement = execution.statementFor(sql, nullptr);
  if (!statement) return nullptr;

  // The rows are read after this call: what the parameters point to stays with the statement.
  const FMArgumentBinder binder(*this, *statement, SIZE_MAX);
  const int bound = binder.bindAll({argumentsInArray, orDictionary, orVAList});
  if (bound != statement->parameterCount()) {
    Console::log("Error: the bind count is not correct for the # of variables (executeQuery)");
    discard(*statement, sql);
    return nullptr;
  }
  execution.cache(statement, sql);
  auto resultSet = FMResultSet::resultSetWithStatement(statement, shared_from_this());
  resultSet->setQuery(sql.string());
  openResultSets_.push_back(resultSet);
  statement->setUseCount(statement->useCount() + 1);
  return resultSet;
}

bool FMDatabase::executeUpdateErrorWithArgumentsInArrayOrDictionaryOrVAList(
    NullableText sql, ErrorPlace error, const Array* argumentsInArray,
    const Dictionary* orDictionary, FMArgumentList* orVAList) {
  if (!db_ && !databaseExists()) return false;
  Execution execution(*this);
  if (!execution) return false;
  if (traceExecution_) traceCall("%@ executeUpdate: %@", *this, sql);
  const auto statement = execution.statementFor(sql, error);
  if (!statement) return false;

  // The statement ends within this call: the parameters may point to what the caller has.
  const BorrowedBindings bindings(*statement);
  const FMArgumentBinder binder(*this, *statement, updateCopyLimit);
  const int bound = binder.bindAll({argumentsInArray, orDictionary, orVAList});
  const int count = statement->parameterCount();
  if (bound != count) {
    logBindCount(bound, count, sql);
    discard(*statement, sql);
    return false;
  }
  const int code = execution.step(*statement, sql);
  execution.cache(statement, sql);
  statement->setUseCount(statement->useCount() + 1);
  execution.finish(*statement, sql);
  return code == SQLITE_DONE || code == SQLITE_OK;
}

std::shared_ptr<FMResultSet> FMDatabase::executeQueryWithArgumentsInArray(
    NullableText sql, const Array& argumentsInArray) {
  return executeQueryWithArgumentsInArrayOrDictionaryOrVAList(sql, &argumentsInArray, nullptr,
                                                              nullptr);
}

std::shared_ptr<FMResultSet> FMDatabase::executeQueryWithParameterDictionary(
    NullableText sql, const Dictionary& parameterDictionary) {
  return executeQueryWithArgumentsInArrayOrDictionaryOrVAList(sql, nullptr, &parameterDictionary,
                                                              nullptr);
}

std::shared_ptr<FMResultSet> FMDatabase::executeQueryWithVAList(NullableText sql,
                                                                FMArgumentList& list) {
  return executeQueryWithArgumentsInArrayOrDictionaryOrVAList(sql, nullptr, nullptr, &list);
}

bool FMDatabase::executeUpdateWithArgumentsInArray(NullableText sql,
                                                   const Array& argumentsInArray) {
  return executeUpdateErrorWithArgumentsInArrayOrDictionaryOrVAList(sql, nullptr, &argumentsInArray,
                                                                    nullptr, nullptr);
}

bool FMDatabase::executeUpdateWithParameterDictionary(NullableText sql,
                                                      const Dictionary& parameterDictionary) {
  return executeUpdateErrorWithArgumentsInArrayOrDictionaryOrVAList(sql, nullptr, nullptr,
                                                                    &parameterDictionary, nullptr);
}

bool FMDatabase::executeUpdateWithVAList(NullableText sql, FMArgumentList& list) {
  return executeUpdateErrorWithArgumentsInArrayOrDictionaryOrVAList(sql, nullptr, nullptr, nullptr,
                                                                    &list);
}

std::int64_t FMDatabase::lastInsertRowId() {
  const Execution execution(*this);
  return execution && db_ ? sqlite3_last_insert_rowid(db_) : 0;
}

int FMDatabase::changes() {
  const Execution execution(*this);
  return execution && db_ ? sqlite3_changes(db_) : 0;
}
