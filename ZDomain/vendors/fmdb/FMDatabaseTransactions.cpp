#include <atomic>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "ZDomain/vendors/fmdb/FMDatabaseBlocks.h"
#include "foundation/Format.h"

using foundation::Error;
using foundation::format;

namespace {

std::string escaped(std::string_view name) {
  std::string result;
  for (const char c : name) result.append(c == '\'' ? 2 : 1, c);
  return result;
}

// `pattern` with the name in it, as an update.
bool run(FMDatabase& database, std::string_view pattern, std::string_view name,
         FMDatabase::ErrorPlace error) {
  const bool successful = database.executeUpdate(format(pattern, escaped(name)));
  if (!successful && error) *error = database.lastError();
  return successful;
}

}  // namespace

bool FMDatabase::beginTransaction() {
  const bool successful = executeUpdate("begin exclusive transaction");
  if (successful) inTransaction_ = true;
  return successful;
}

bool FMDatabase::beginDeferredTransaction() {
  const bool successful = executeUpdate("begin deferred transaction");
  if (successful) inTransaction_ = true;
  return successful;
}

bool FMDatabase::commit() {
  const bool successful = executeUpdate("commit transaction");
  if (successful) inTransaction_ = false;
  return successful;
}

bool FMDatabase::rollback() {
  const bool successful = executeUpdate("rollback transaction");
  if (successful) inTransaction_ = false;
  return successful;
}

bool FMDatabase::startSavePointWithName(std::string_view name, ErrorPlace error) {
  return run(*this, "savepoint '%@';", name, error);
}

bool FMDatabase::releaseSavePointWithName(std::string_view name, ErrorPlace error) {
  return run(*this, "release savepoint '%@';", name, error);
}

bool FMDatabase::rollbackToSavePointWithName(std::string_view name, ErrorPlace error) {
  return run(*this, "rollback transaction to savepoint '%@';", name, error);
}

std::optional<Error> FMDatabase::inSavePoint(const std::function<void(bool*)>& block) {
  static std::atomic<long> counter{0};
  const auto inside = [&block](FMDatabase*, bool* shouldRollBack) { block(shouldRollBack); };
  return FMDatabaseBlocks::inSavePoint(this, format("dbSavePoint%ld", counter.fetch_add(1)),
                                       inside);
}
