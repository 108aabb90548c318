#include <utility>

#include <sqlite3.h>

#include "ZDomain/vendors/fmdb/FMArgumentBinder.h"
#include "ZDomain/vendors/fmdb/FMDatabase.h"

using foundation::Date;
using foundation::DateFormatter;

bool FMDatabase::bindObject(const FMArgument& object, int toColumn,
                            FMStatement& inStatement) const {
  // A statement that runs refuses, and goes on reading what it keeps for the parameter.
  const bool isFree = sqlite3_bind_null(inStatement.statement(), toColumn) == SQLITE_OK;
  return isFree && FMArgumentBinder(*this, inStatement, 0).bind(object, toColumn);
}

std::shared_ptr<const DateFormatter> FMDatabase::storeableDateFormat(std::string_view format) {
  return std::make_shared<const DateFormatter>(format, foundation::TimeZone::GMT);
}

void FMDatabase::setDateFormat(std::shared_ptr<const DateFormatter> format) {
  dateFormat_ = std::move(format);
}

std::optional<Date> FMDatabase::dateFromString(NullableText text) const {
  return dateFormat_ && !text.isNull() ? dateFormat_->dateFromString(text.view()) : std::nullopt;
}

std::optional<std::string> FMDatabase::stringFromDate(Date date) const {
  return dateFormat_ ? std::optional(dateFormat_->stringFromDate(date)) : std::nullopt;
}
