#include <exception>
#include <utility>

#include <sqlite3.h>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "platform/Console.h"

using foundation::DataView;
using platform::Console;

namespace {

// An exception must not cross SQLite: it becomes the error of the statement that calls.
void callBlock(sqlite3_context* context, int argumentCount, sqlite3_value** arguments) {
  const auto* const block =
      static_cast<const FMDatabase::FunctionBlock*>(sqlite3_user_data(context));
  try {
    (*block)(context, argumentCount, arguments);
  } catch (const std::exception& exception) {
    sqlite3_result_error(context, exception.what(), -1);
  } catch (...) {
    sqlite3_result_error(context, "unknown exception", -1);
  }
}

/// A connection to a file for the length of a copy.
class File {
 public:
  explicit File(std::string_view path) : code_(sqlite3_open(std::string(path).c_str(), &handle_)) {}
  ~File() { sqlite3_close(handle_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  bool isOpen() const { return code_ == SQLITE_OK; }
  sqlite3* handle() const { return handle_; }

 private:
  sqlite3* handle_ = nullptr;
  const int code_;
};

// A line for each reason why not.
bool canCopy(const FMDatabase& database) {
  if (database.databasePath()) {
    Console::log("Database is not an in-memory representation.");
    return false;
  }
  if (!database.sqliteHandle()) Console::log("Invalid database connection.");
  return database.sqliteHandle() != nullptr;
}

bool copyPages(sqlite3* source, sqlite3* destination) {
  sqlite3_backup* const backup = sqlite3_backup_init(destination, "main", source, "main");
  if (backup) {
    sqlite3_backup_step(backup, -1);
    sqlite3_backup_finish(backup);
  }
  return sqlite3_errcode(destination) == SQLITE_OK;
}

}  // namespace

bool FMDatabase::makeFunctionNamed(NullableText name, int maximumArguments,
                                   FunctionBlock withBlock) {
  if (!databaseExists()) return false;
  const auto& block =
      openFunctions_.emplace_back(std::make_unique<const FunctionBlock>(std::move(withBlock)));
  return sqlite3_create_function(db_, name.string().c_str(), maximumArguments, SQLITE_UTF8,
                                 const_cast<FunctionBlock*>(block.get()), &callBlock, nullptr,
                                 nullptr) == SQLITE_OK;
}

bool FMDatabase::setKey(NullableText key) { return setKeyWithData(foundation::dataOf(key.view())); }

bool FMDatabase::setKeyWithData(DataView) { return false; }

bool FMDatabase::rekey(NullableText key) { return rekeyWithData(foundation::dataOf(key.view())); }

bool FMDatabase::rekeyWithData(DataView) { return false; }

bool FMDatabase::readFromFile(std::string_view path) {
  if (!canCopy(*this)) return false;
  const File file(path);
  return file.isOpen() && copyPages(file.handle(), db_);
}

bool FMDatabase::writeToFile(std::string_view path) {
  if (!canCopy(*this)) return false;
  const File file(path);
  return file.isOpen() && copyPages(db_, file.handle());
}
