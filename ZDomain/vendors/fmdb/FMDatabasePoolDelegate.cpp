#include "ZDomain/vendors/fmdb/FMDatabasePoolDelegate.h"

bool FMDatabasePoolDelegate::databasePoolShouldAddDatabaseToPool(FMDatabasePool&, FMDatabase&) {
  return true;
}

void FMDatabasePoolDelegate::databasePoolDidAddDatabase(FMDatabasePool&, FMDatabase&) {}
