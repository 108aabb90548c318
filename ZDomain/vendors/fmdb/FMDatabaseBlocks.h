#pragma once

#include <optional>
#include <string>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "foundation/Error.h"

/// What is done around a block on a connection, which may be null: then everything but the block is
/// left out. An exception of the block rolls back and passes on.
namespace FMDatabaseBlocks {

void begin(FMDatabase* database, bool deferred);
void end(FMDatabase* database, bool shouldRollBack);

/// Runs the block inside a transaction, whether or not that could be begun.
template <class Block>
void inTransaction(FMDatabase* database, bool deferred, Block& block) {
  begin(database, deferred);
  bool shouldRollBack = false;
  try {
    block(database, &shouldRollBack);
  } catch (...) {
    end(database, true);
    throw;
  }
  end(database, shouldRollBack);
}

/// The name of savepoint `number` of a queue or a pool.
std::string savePointName(long number);

void endSavePoint(FMDatabase& database, const std::string& name, bool shouldRollBack,
                  std::optional<foundation::Error>& error);

/// Runs the block inside the savepoint `name`, only if that could be started. Returns the error of
/// the last step that failed.
template <class Block>
std::optional<foundation::Error> inSavePoint(FMDatabase* database, const std::string& name,
                                             Block& block) {
  std::optional<foundation::Error> error;
  if (!database || !database->startSavePointWithName(name, &error)) return error;
  bool shouldRollBack = false;
  try {
    block(database, &shouldRollBack);
  } catch (...) {
    endSavePoint(*database, name, true, error);
    throw;
  }
  endSavePoint(*database, name, shouldRollBack, error);
  return error;
}

}  // namespace FMDatabaseBlocks
