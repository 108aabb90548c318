#include "ZDomain/vendors/fmdb/FMResultSet.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <sqlite3.h>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "foundation/Unicode.h"
#include "platform/Console.h"

using foundation::Data;
using foundation::DataView;
using foundation::Date;
using foundation::Dictionary;
using foundation::lowercaseString;
using foundation::NullableText;
using foundation::Value;
using platform::Console;

namespace {

constexpr std::size_t recentNameLimit = 32;

// The nearest microsecond, so that a date that was stored as a real comes back as it was.
Date dateSince1970(double seconds) {
  const double microseconds = std::round(seconds * 1e6);
  if (std::abs(microseconds) >= 9.2e18) return Date(foundation::durationOf(seconds));
  return Date(Date::duration(static_cast<std::int64_t>(microseconds)));
}

std::size_t sizeOf(int bytes) { return static_cast<std::size_t>(bytes); }

}  // namespace

std::shared_ptr<FMResultSet> FMResultSet::resultSetWithStatement(
    std::shared_ptr<FMStatement> statement, std::shared_ptr<FMDatabase> database) {
  return std::make_shared<FMResultSet>(std::move(statement), std::move(database));
}

FMResultSet::FMResultSet(std::shared_ptr<FMStatement> statement,
                         std::shared_ptr<FMDatabase> database)
    : parentDB_(std::move(database)), statement_(std::move(statement)) {
  if (statement_) statement_->setInUse(true);
}

FMResultSet::~FMResultSet() { close(); }

void FMResultSet::setParentDB(std::shared_ptr<FMDatabase> database) {
  parentDB_ = std::move(database);
}

bool FMResultSet::next() {
  const int code = sqlite3_step(handle());
  if (code == SQLITE_ROW) return true;
  const char* const message = sqlite3_errmsg(parentDB_ ? parentDB_->sqliteHandle() : nullptr);
  switch (code) {
    case SQLITE_DONE:
      break;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      Console::log("%s:%d Database busy (%@)", "-[FMResultSet next]", 156,
                   parentDB_ ? parentDB_->databasePath() : std::nullopt);
      Console::log("Database busy");
      break;
    case SQLITE_ERROR:
    case SQLITE_MISUSE:
      Console::log("Error calling sqlite3_step (%d: %s) rs", code, message);
      break;
    default:
      Console::log("Unknown error calling sqlite3_step (%d: %s) rs", code, message);
  }
  close();
  return false;
}

bool FMResultSet::hasAnotherRow() const {
  return parentDB_ && sqlite3_errcode(parentDB_->sqliteHandle()) == SQLITE_ROW;
}

void FMResultSet::close() {
  if (const auto statement = std::exchange(statement_, nullptr)) {
    statement->reset();
    statement->clearKeptBindings();
  }
  // The connection may go away with this reference.
  if (const auto database = std::exchange(parentDB_, nullptr)) database->resultSetDidClose(*this);
}

int FMResultSet::columnCount() const { return sqlite3_column_count(handle()); }

std::optional<std::string> FMResultSet::columnNameForIndex(int columnIndex) const {
  const char* const name = handle() ? sqlite3_column_name(handle(), columnIndex) : nullptr;
  return name ? std::optional<std::string>(name) : std::nullopt;
}

const FMResultSet::ColumnNameToIndexMap& FMResultSet::columnNameToIndexMap() const {
  if (!columnNameToIndexMap_) {
    const int count = columnCount();
    columnNameToIndexMap_.emplace(sizeOf(count));
    for (int i = 0; i < count; ++i) {
      columnNameToIndexMap_->insert_or_assign(lowercaseString(*columnNameForIndex(i)), i);
    }
  }
  return *columnNameToIndexMap_;
}

int FMResultSet::findColumn(NullableText name) const {
  const std::string lowercaseName = lowercaseString(name.view());
  const auto found = columnNameToIndexMap().find(lowercaseName);
  if (name.isNull() || found == columnNameToIndexMap().end()) {
    Console::log("Warning: I could not find the column named '%@'.",
                 name.isNull() ? NullableText() : lowercaseName);
    return -1;
  }
  remember(name.view(), found->second);
  return found->second;
}

void FMResultSet::remember(std::string_view name, int index) const {
  const auto isName = [&](const RecentName& recent) { return recent.name == name; };
  const auto known = std::find_if(recentNames_.begin(), recentNames_.end(), isName);
  expectedName_ = static_cast<std::size_t>(known - recentNames_.begin()) + 1;
  if (known == recentNames_.end() && recentNames_.size() < recentNameLimit) {
    recentNames_.push_back({std::string(name), index});
  }
  if (expectedName_ >= recentNames_.size()) expectedName_ = 0;
}

int FMResultSet::intForColumnIndex(int columnIndex) const {
  return sqlite3_column_int(handle(), columnIndex);
}

std::int64_t FMResultSet::longForColumnIndex(int columnIndex) const {
  return sqlite3_column_int64(handle(), columnIndex);
}

std::int64_t FMResultSet::longLongIntForColumnIndex(int columnIndex) const {
  return longForColumnIndex(columnIndex);
}

std::uint64_t FMResultSet::unsignedLongLongIntForColumnIndex(int columnIndex) const {
  return static_cast<std::uint64_t>(longLongIntForColumnIndex(columnIndex));
}

bool FMResultSet::boolForColumnIndex(int columnIndex) const {
  return intForColumnIndex(columnIndex) != 0;
}

double FMResultSet::doubleForColumnIndex(int columnIndex) const {
  return sqlite3_column_double(handle(), columnIndex);
}

// SQLite gives a text for every value but NULL, an empty one included.
std::optional<std::string_view> FMResultSet::textForColumnIndex(int columnIndex) const {
  const char* const text = UTF8StringForColumnIndex(columnIndex);
  if (!text) return std::nullopt;
  return std::string_view(text, sizeOf(sqlite3_column_bytes(handle(), columnIndex)));
}

std::optional<std::string> FMResultSet::stringForColumnIndex(int columnIndex) const {
  const auto text = textForColumnIndex(columnIndex);
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<Date> FMResultSet::dateForColumnIndex(int columnIndex) const {
  if (!hasValue(columnIndex)) return std::nullopt;
  if (parentDB_ && parentDB_->hasDateFormatter()) {
    return parentDB_->dateFromString(stringForColumnIndex(columnIndex));
  }
  return dateSince1970(doubleForColumnIndex(columnIndex));
}

std::optional<Data> FMResultSet::dataForColumnIndex(int columnIndex) const {
  std::optional<Data> data;
  if (const auto bytes = dataNoCopyForColumnIndex(columnIndex)) append(data.emplace(), *bytes);
  return data;
}

// The pointer of an empty blob is null as well.
std::optional<DataView> FMResultSet::dataNoCopyForColumnIndex(int columnIndex) const {
  if (!hasValue(columnIndex)) return std::nullopt;
  const auto* const bytes =
      static_cast<const std::uint8_t*>(sqlite3_column_blob(handle(), columnIndex));
  return DataView(bytes, sizeOf(sqlite3_column_bytes(handle(), columnIndex)));
}

// A negative index does not reach SQLite, which would take note of an error.
bool FMResultSet::hasValue(int columnIndex) const {
  return columnIndex >= 0 && !columnIndexIsNull(columnIndex);
}

bool FMResultSet::columnIndexIsNull(int columnIndex) const {
  return sqlite3_column_type(handle(), columnIndex) == SQLITE_NULL;
}

const char* FMResultSet::UTF8StringForColumnIndex(int columnIndex) const {
  if (columnIndex < 0) return nullptr;
  return reinterpret_cast<const char*>(sqlite3_column_text(handle(), columnIndex));
}

Value FMResultSet::objectForColumnIndex(int columnIndex) const {
  switch (sqlite3_column_type(handle(), columnIndex)) {
    case SQLITE_INTEGER:
      return longLongIntForColumnIndex(columnIndex);
    case SQLITE_FLOAT:
      return doubleForColumnIndex(columnIndex);
    case SQLITE_BLOB:
      return *dataForColumnIndex(columnIndex);
    default:
      if (auto text = stringForColumnIndex(columnIndex)) return *std::move(text);
      return foundation::Null();
  }
}

int FMResultSet::intForColumn(NullableText name) const {
  return intForColumnIndex(columnIndexForName(name));
}
std::int64_t FMResultSet::longForColumn(NullableText name) const {
  return longForColumnIndex(columnIndexForName(name));
}
std::int64_t FMResultSet::longLongIntForColumn(NullableText name) const {
  return longLongIntForColumnIndex(columnIndexForName(name));
}
std::uint64_t FMResultSet::unsignedLongLongIntForColumn(NullableText name) const {
  return unsignedLongLongIntForColumnIndex(columnIndexForName(name));
}
bool FMResultSet::boolForColumn(NullableText name) const {
  return boolForColumnIndex(columnIndexForName(name));
}
double FMResultSet::doubleForColumn(NullableText name) const {
  return doubleForColumnIndex(columnIndexForName(name));
}
std::optional<std::string> FMResultSet::stringForColumn(NullableText name) const {
  return stringForColumnIndex(columnIndexForName(name));
}
std::optional<Date> FMResultSet::dateForColumn(NullableText name) const {
  return dateForColumnIndex(columnIndexForName(name));
}
std::optional<Data> FMResultSet::dataForColumn(NullableText name) const {
  return dataForColumnIndex(columnIndexForName(name));
}
std::optional<DataView> FMResultSet::dataNoCopyForColumn(NullableText name) const {
  return dataNoCopyForColumnIndex(columnIndexForName(name));
}
bool FMResultSet::columnIsNull(NullableText name) const {
  return columnIndexIsNull(columnIndexForName(name));
}
const char* FMResultSet::UTF8StringForColumnName(NullableText name) const {
  return UTF8StringForColumnIndex(columnIndexForName(name));
}
Value FMResultSet::objectForColumnName(NullableText name) const {
  return objectForColumnIndex(columnIndexForName(name));
}

std::optional<Dictionary> FMResultSet::resultDictionary() const {
  if (!hasData()) return std::nullopt;
  Dictionary dictionary;
  for (int i = 0; i < columnCount(); ++i) {
    dictionary.insert_or_assign(*columnNameForIndex(i), objectForColumnIndex(i));
  }
  return dictionary;
}

std::optional<Dictionary> FMResultSet::resultDict() const {
  if (!hasData()) return std::nullopt;
  Dictionary dictionary;
  for (const auto& [name, index] : columnNameToIndexMap()) {
    dictionary.emplace(name, objectForColumnIndex(index));
  }
  return dictionary;
}

bool FMResultSet::hasData() const {
  if (sqlite3_data_count(handle()) != 0) return true;
  Console::log("Warning: There seem to be no columns in this set.");
  return false;
}

void FMResultSet::kvcMagic(foundation::KeyValueCoding& object) const {
  for (int i = 0; i < columnCount(); ++i) {
    if (auto text = stringForColumnIndex(i)) {
      object.setValueForKey(Value(*std::move(text)), *columnNameForIndex(i));
    }
  }
}
