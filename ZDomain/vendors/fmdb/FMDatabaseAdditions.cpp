#include <algorithm>
#include <utility>

#include <sqlite3.h>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "foundation/Assertion.h"
#include "foundation/Format.h"
#include "foundation/StringEncoding.h"
#include "foundation/Unicode.h"
#include "platform/Console.h"

using foundation::format;
using foundation::lowercaseString;
using foundation::UTF16Length;
using platform::Console;

namespace {

constexpr std::size_t codeLength = 4;

// The text of a four-character code, in quotes.
std::string fileTypeForTypeCode(std::uint32_t code) {
  foundation::Data bytes;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<std::uint8_t>(code >> shift));
  }
  return format("'%@'", foundation::stringFromData(bytes, foundation::StringEncoding::ISOLatin1));
}

// The code of such a text.
std::uint32_t typeCodeFromFileType(std::string_view text) {
  const std::u32string characters = foundation::UTF32FromUTF8(text);
  std::uint32_t code = 0;
  for (std::size_t i = 1; i <= codeLength; ++i) {
    const char32_t character = i + 1 < characters.size() ? characters[i] : U'\0';
    code = code << 8 | (character < 0x100 ? character : U'?');
  }
  return code;
}

std::uint32_t firstNumber(const std::shared_ptr<FMResultSet>& resultSet) {
  if (!resultSet || !resultSet->next()) return 0;
  return static_cast<std::uint32_t>(resultSet->longLongIntForColumnIndex(0));
}

void run(const std::shared_ptr<FMResultSet>& resultSet) {
  if (resultSet) resultSet->next();
}

}  // namespace

bool FMDatabase::tableExists(std::string_view tableName) {
  const auto resultSet =
      executeQuery("select [sql] from sqlite_master where [type] = 'table' and lower(name) = ?",
                   lowercaseString(tableName));
  return resultSet && resultSet->next();
}

std::shared_ptr<FMResultSet> FMDatabase::getSchema() {
  return executeQuery(
      "SELECT type, name, tbl_name, rootpage, sql FROM (SELECT * FROM sqlite_master UNION ALL "
      "SELECT * FROM sqlite_temp_master) WHERE type != 'meta' AND name NOT LIKE 'sqlite_%' "
      "ORDER BY tbl_name, type DESC, name");
}

std::shared_ptr<FMResultSet> FMDatabase::getTableSchema(std::string_view tableName) {
  return executeQuery(format("pragma table_info('%@')", tableName));
}

bool FMDatabase::columnExistsInTableWithName(std::string_view columnName,
                                             std::string_view tableName) {
  const std::string name = lowercaseString(columnName);
  for (const FMResultSet& row : getTableSchema(lowercaseString(tableName))) {
    if (lowercaseString(row.get<std::string>("name")) == name) return true;
  }
  return false;
}

bool FMDatabase::columnExistsColumnName(std::string_view tableName, std::string_view columnName) {
  return columnExistsInTableWithName(columnName, tableName);
}

std::uint32_t FMDatabase::applicationID() {
  return firstNumber(executeQuery("pragma application_id"));
}

void FMDatabase::setApplicationID(std::uint32_t applicationID) {
  run(executeQuery(format("pragma application_id=%d", static_cast<int>(applicationID))));
}

std::string FMDatabase::applicationIDString() {
  const std::string s = fileTypeForTypeCode(applicationID());
  if (UTF16Length(s) != codeLength + 2) {
    foundation::assertion("[s length] == 6", "ZDomain/vendors/fmdb/FMDatabaseAdditions", 151);
  }
  return s.substr(1, s.size() - 2);
}

void FMDatabase::setApplicationIDString(std::string_view applicationIDString) {
  const std::size_t length = UTF16Length(applicationIDString);
  if (length != codeLength) {
    Console::log("setApplicationIDString: string passed is not exactly 4 chars long. (was %ld)",
                 length);
  }
  setApplicationID(typeCodeFromFileType(format("'%@'", applicationIDString)));
}

std::uint32_t FMDatabase::userVersion() { return firstNumber(executeQuery("pragma user_version")); }

void FMDatabase::setUserVersion(std::uint32_t userVersion) {
  run(executeQuery(format("pragma user_version = %d", static_cast<int>(userVersion))));
}

bool FMDatabase::validateSQL(NullableText sql, ErrorPlace error) {
  sqlite3_stmt* handle = nullptr;
  const int code = prepare(sql, &handle);
  const FMStatement statement(handle);
  if (code != SQLITE_OK && error) {
    *error = foundation::Error("NSCocoaErrorDomain", lastErrorCode(), lastErrorMessage());
  }
  return code == SQLITE_OK;
}
