#include "ZDomain/vendors/fmdb/FMDatabaseBlocks.h"

#include "foundation/Format.h"

// Callers count on the block being run whatever comes of this.
void FMDatabaseBlocks::begin(FMDatabase* database, bool deferred) {
  if (!database) return;
  static_cast<void>(deferred ? database->beginDeferredTransaction() : database->beginTransaction());
}

void FMDatabaseBlocks::end(FMDatabase* database, bool shouldRollBack) {
  if (!database) return;
  static_cast<void>(shouldRollBack ? database->rollback() : database->commit());
}

std::string FMDatabaseBlocks::savePointName(long number) {
  return foundation::format("savePoint%ld", number);
}

void FMDatabaseBlocks::endSavePoint(FMDatabase& database, const std::string& name,
                                    bool shouldRollBack, std::optional<foundation::Error>& error) {
  if (shouldRollBack) database.rollbackToSavePointWithName(name, &error);
  database.releaseSavePointWithName(name, &error);
}
