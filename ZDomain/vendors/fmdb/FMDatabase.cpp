#include "ZDomain/vendors/fmdb/FMDatabase.h"

#include <algorithm>
#include <utility>

#include <sqlite3.h>

#include "foundation/Assertion.h"
#include "platform/Clock.h"
#include "platform/Console.h"

using foundation::Error;
using platform::Clock;
using platform::Console;

namespace {

constexpr int busyRetryPause = 50;  // milliseconds

bool isBusy(int code) { return code == SQLITE_BUSY || code == SQLITE_LOCKED; }

bool finalizeLeakedStatements(sqlite3* db) {
  bool isAny = false;
  while (sqlite3_stmt* const statement = sqlite3_next_stmt(db, nullptr)) {
    Console::log("Closing leaked statement");
    sqlite3_finalize(statement);
    isAny = true;
  }
  return isAny;
}

}  // namespace

std::shared_ptr<FMDatabase> FMDatabase::databaseWithPath(NullableText path) {
  return std::make_shared<FMDatabase>(Key(), path);
}

FMDatabase::FMDatabase(Key, NullableText path)
    : databasePath_(path.isNull() ? std::nullopt : std::optional(path.string())) {
  if (!sqlite3_threadsafe()) {
    foundation::assertion("sqlite3_threadsafe()", "ZDomain/vendors/fmdb/FMDatabase", 37);
  }
}

FMDatabase::~FMDatabase() { close(); }

std::string FMDatabase::sqliteLibVersion() { return sqlite3_libversion(); }

bool FMDatabase::isSQLiteThreadSafe() { return sqlite3_threadsafe() != 0; }

const char* FMDatabase::sqlitePath() const {
  return databasePath_ ? databasePath_->c_str() : ":memory:";
}

bool FMDatabase::open() { return db_ || didOpen(sqlite3_open(sqlitePath(), &db_)); }

bool FMDatabase::openWithFlags(int flags) {
  return db_ || didOpen(sqlite3_open_v2(sqlitePath(), &db_, flags, nullptr));
}

bool FMDatabase::didOpen(int code) {
  if (code != SQLITE_OK) {
    Console::log("error opening!: %d", code);
    return false;
  }
  if (maxBusyRetryTimeInterval_ > 0) setMaxBusyRetryTimeInterval(maxBusyRetryTimeInterval_);
  return true;
}

bool FMDatabase::close() {
  clearCachedStatements();
  closeOpenResultSets();
  sqlite3* const db = std::exchange(db_, nullptr);
  if (!db) return true;
  int code = sqlite3_close(db);
  if (isBusy(code) && finalizeLeakedStatements(db)) code = sqlite3_close(db);
  if (isBusy(code)) {
    // Something that is no statement still uses the handle, which goes away with its last user.
    sqlite3_busy_handler(db, nullptr, nullptr);
    sqlite3_close_v2(db);
  } else if (code != SQLITE_OK) {
    Console::log("error closing!: %d", code);
  }
  return true;
}

bool FMDatabase::goodConnection() {
  return db_ && executeQuery("select name from sqlite_master where type='table'") != nullptr;
}

bool FMDatabase::databaseExists() const {
  if (!db_) Console::log("The FMDatabase %@ is not open.", *this);
  return db_ != nullptr;
}

void FMDatabase::warnInUse() const {
  Console::log("The FMDatabase %@ is currently in use.", *this);
}

// Called with the number of calls before it for the same lock.
int FMDatabase::waitForLock(void* database, int count) {
  FMDatabase& self = *static_cast<FMDatabase*>(database);
  if (count == 0) {
    self.startBusyRetryTime_ = Clock::current().now();
    return 1;
  }
  const double elapsed =
      foundation::secondsBetween(self.startBusyRetryTime_, Clock::current().now());
  if (elapsed >= self.maxBusyRetryTimeInterval_) return 0;
  sqlite3_sleep(busyRetryPause);
  return 1;
}

void FMDatabase::setMaxBusyRetryTimeInterval(double seconds) {
  maxBusyRetryTimeInterval_ = seconds;
  if (db_) sqlite3_busy_handler(db_, seconds > 0 ? &waitForLock : nullptr, this);
}

int FMDatabase::busyRetryTimeout() const {
  Console::log("%s:%d", "-[FMDatabase busyRetryTimeout]", 221);
  Console::log("FMDB: busyRetryTimeout no longer works, please use retryTimeout");
  return -1;
}

void FMDatabase::setBusyRetryTimeout(int) {
  Console::log("%s:%d", "-[FMDatabase setBusyRetryTimeout:]", 227);
  Console::log("FMDB: setBusyRetryTimeout does nothing, please use setRetryTimeout:");
}

bool FMDatabase::hasOpenResultSets() const {
  return std::any_of(openResultSets_.begin(), openResultSets_.end(),
                     [](const auto& reference) { return !reference.expired(); });
}

void FMDatabase::closeOpenResultSets() {
  const auto self = weak_from_this().lock();  // a result set may hold the last reference
  for (const auto& reference : std::exchange(openResultSets_, {})) {
    const auto resultSet = reference.lock();
    if (!resultSet) continue;
    resultSet->setParentDB(nullptr);
    resultSet->close();
  }
}

void FMDatabase::resultSetDidClose(const FMResultSet& resultSet) {
  std::erase_if(openResultSets_, [&](const auto& reference) {
    const auto open = reference.lock();
    return !open || open.get() == &resultSet;
  });
}

std::string FMDatabase::lastErrorMessage() const { return sqlite3_errmsg(db_); }

int FMDatabase::lastErrorCode() const { return sqlite3_errcode(db_); }

bool FMDatabase::hadError() const {
  const int code = lastErrorCode();
  return code > SQLITE_OK && code < SQLITE_ROW;
}

Error FMDatabase::errorWithMessage(NullableText message) const {
  return Error("FMDatabase", lastErrorCode(), message.string());
}

Error FMDatabase::lastError() const { return errorWithMessage(lastErrorMessage()); }
