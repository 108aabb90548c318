#include "ZDomain/vendors/fmdb/FMSplittedStatement.h"

#include <utility>

#include "foundation/Format.h"

void FMSplittedStatement::setStatementString(std::string statementString) {
  batch_ = std::make_shared<const std::string>(std::move(statementString));
  statementString_ = *batch_;
}

std::string FMSplittedStatement::description() const {
  return foundation::format("%@ %@", Object::description(), statementString_);
}
