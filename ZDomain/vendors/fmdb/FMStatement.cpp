#include "ZDomain/vendors/fmdb/FMStatement.h"

#include <utility>

#include <sqlite3.h>

#include "foundation/Format.h"

FMStatement::FMStatement(sqlite3_stmt* statement)
    : statement_(statement), parameterCount_(sqlite3_bind_parameter_count(statement)) {}

int FMStatement::close() {
  const int code = sqlite3_finalize(std::exchange(statement_, nullptr));
  clearBindings();
  inUse_ = false;
  return code;
}

int FMStatement::reset() {
  inUse_ = false;
  return sqlite3_reset(statement_);
}

void FMStatement::clearBindings() {
  if (statement_) sqlite3_clear_bindings(statement_);
  kept_.clear();
  isBorrowing_ = false;
}

std::string FMStatement::description() const {
  return foundation::format("%@ %ld hit(s) for query %@", Object::description(), useCount_, query_);
}
