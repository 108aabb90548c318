#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ZDomain/vendors/fmdb/FMArgument.h"
#include "ZDomain/vendors/fmdb/FMResultSet.h"
#include "ZDomain/vendors/fmdb/FMStatement.h"
#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/DateFormatter.h"
#include "foundation/Error.h"
#include "foundation/NullableText.h"
#include "foundation/Value.h"

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

/// A connection to an SQLite database: statements with bound arguments, results, transactions.
///
/// Every failure is a false or null result and, where told, a line on the console; nothing throws
/// but what blocks and objects of the caller throw.
///
/// What arguments point to is needed only while the call runs: what a query reads later, and what
/// an update leaves bound, are copies that the statement keeps. Arguments beyond the parameters of
/// the text are ignored.
///
/// Thread safety: one thread at a time. A second statement while one is prepared, bound or updates
/// (from inside a bound object, an SQL function or another thread) is refused with a line. To share
/// a database between threads use `FMDatabaseQueue` or `FMDatabasePool`.
///
///     const auto database = FMDatabase::databaseWithPath("/var/lib/example/people.db");
///     if (!database->open()) return;
///     database->executeUpdate("insert into person values (?, ?)", 1, "Ada");
///     for (FMResultSet& row : database->executeQuery("select name from person where id = ?", 1)) {
///       use(row.get<std::string>("name"));
///     }
class FMDatabase : public foundation::Object, public std::enable_shared_from_this<FMDatabase> {
 protected:
  struct Key {};

 public:
  /// The statements of one text, and of all texts.
  using StatementSet = std::vector<std::shared_ptr<FMStatement>>;
  using StatementCache =
      std::unordered_map<std::string, StatementSet, FMResultSet::NameHash, std::equal_to<>>;
  using Array = foundation::Array;
  using Data = foundation::Data;
  using Date = foundation::Date;
  using DateFormatter = foundation::DateFormatter;
  using Dictionary = foundation::Dictionary;
  using Error = foundation::Error;
  using NullableText = foundation::NullableText;

  /// The rows of a query; null when it failed.
  using ResultSet = std::shared_ptr<FMResultSet>;

  /// Where an operation puts the error that occurred, if any; null when nobody wants it.
  using ErrorPlace = std::optional<Error>*;

  /// Serves as an SQL function: sets the result on the context.
  using FunctionBlock =
      std::function<void(sqlite3_context* context, int argumentCount, sqlite3_value** arguments)>;

  /// A closed connection to the file at `path`; null for a database in memory, an empty path for
  /// a temporary file of SQLite's. Stops the process when the SQLite library is not thread-safe.
  static std::shared_ptr<FMDatabase> databaseWithPath(NullableText path = nullptr);

  FMDatabase(Key, NullableText path);
  ~FMDatabase() override;

  /// The version of the SQLite library: "3.40.1".
  static std::string sqliteLibVersion();

  /// Whether the SQLite library was built for use by several threads.
  static bool isSQLiteThreadSafe();

  /// What the connection was made with.
  const std::optional<std::string>& databasePath() const { return databasePath_; }

  /// What SQLite opens: the path up to its first zero byte, "" or ":memory:".
  const char* sqlitePath() const;

  /// Opens the connection, making the file when there is none. True as well when it is open.
  ///
  /// After a failure (one line) the handle that SQLite made stays, so that the next call returns
  /// true; `close` first to try again.
  bool open();

  /// As `open`, with SQLite's open flags.
  bool openWithFlags(int flags);

  /// Closes the connection: its cached statements, its result sets, and with a line for each the
  /// statements that were prepared on the handle and not finalized. Always true. Not for calls from
  /// inside a bound object or an SQL function.
  bool close();

  /// Whether the connection is open and can read the schema.
  bool goodConnection();

  /// Whether the connection is open; a line when it is not.
  bool databaseExists() const;

  /// Writes the line of a refused call.
  void warnInUse() const;

  /// SQLite's handle; null when closed.
  sqlite3* sqliteHandle() const { return db_; }

  /// Whether every statement and argument is written to the console. Off at first.
  bool traceExecution() const { return traceExecution_; }
  void setTraceExecution(bool traces) { traceExecution_ = traces; }

  /// Whether a pool has lent the connection out.
  bool checkedOut() const { return checkedOut_; }
  void setCheckedOut(bool checkedOut) { checkedOut_ = checkedOut; }

  /// Whether a text that cannot be prepared aborts the process. Off at first.
  bool crashOnErrors() const { return crashOnErrors_; }
  void setCrashOnErrors(bool crashes) { crashOnErrors_ = crashes; }

  /// Whether failures of statements are written to the console. On at first.
  bool logsErrors() const { return logsErrors_; }
  void setLogsErrors(bool logs) { logsErrors_ = logs; }

  /// For how many seconds a locked database is tried again, every 50 ms, the first time at once;
  /// 0 and less: not at all. 2 at first.
  double maxBusyRetryTimeInterval() const { return maxBusyRetryTimeInterval_; }
  void setMaxBusyRetryTimeInterval(double seconds);

  /// Retired: two lines, and -1 or nothing.
  int busyRetryTimeout() const;
  void setBusyRetryTimeout(int timeout);

  // Queries. A null result means that the text could not be prepared, or has more parameters than
  // there are arguments; lines say which. A null text cannot be prepared.

  /// executeQuery:
  ///
  /// Runs a query with an argument for each "?" of the text.
  template <FMBindable... Arguments>
  ResultSet executeQuery(NullableText sql, const Arguments&... arguments) {
    return executeQueryWithVAList(sql, FMArguments(arguments...).list());
  }

  /// executeQuery:withArgumentsInArray:
  ResultSet executeQueryWithArgumentsInArray(NullableText sql, const Array& argumentsInArray);

  /// executeQuery:withParameterDictionary:
  ///
  /// Each value goes to the parameter ":key"; a key without one leaves a line.
  ResultSet executeQueryWithParameterDictionary(NullableText sql,
                                                const Dictionary& parameterDictionary);

  /// executeQuery:withVAList:
  ResultSet executeQueryWithVAList(NullableText sql, FMArgumentList& list);

  /// executeQueryWithFormat:
  ///
  /// Converts `format` as `extractSQL` does, and runs the query.
  template <FMBindable... Arguments>
  ResultSet executeQueryWithFormat(NullableText format, const Arguments&... arguments) {
    return executeQueryWithFormatAndVAList(format, FMArguments(arguments...).list());
  }

  /// executeQuery:withArgumentsInArray:orDictionary:orVAList:
  ///
  /// What all queries end in. A dictionary goes before the others; each parameter takes the
  /// array's element, and where the array ends the next one of the list. Each may be null.
  ResultSet executeQueryWithArgumentsInArrayOrDictionaryOrVAList(NullableText sql,
                                                                 const Array* argumentsInArray,
                                                                 const Dictionary* orDictionary,
                                                                 FMArgumentList* orVAList);

  // Updates. True when the statement ran to its end in one step: one that yields a row fails.

  /// executeUpdate:
  ///
  /// Runs a statement with an argument for each "?" of the text.
  template <FMBindable... Arguments>
  bool executeUpdate(NullableText sql, const Arguments&... arguments) {
    return updateWithErrorAndBindings(sql, nullptr, arguments...);
  }

  /// update:withErrorAndBindings:
  ///
  /// As `executeUpdate`; `error` receives why the text could not be prepared, and nothing else.
  template <FMBindable... Arguments>
  bool updateWithErrorAndBindings(NullableText sql, ErrorPlace error,
                                  const Arguments&... arguments) {
    FMArguments list(arguments...);
    return executeUpdateErrorWithArgumentsInArrayOrDictionaryOrVAList(sql, error, nullptr, nullptr,
                                                                      &list.list());
  }

  /// executeUpdate:withArgumentsInArray:
  bool executeUpdateWithArgumentsInArray(NullableText sql, const Array& argumentsInArray);

  /// executeUpdate:withParameterDictionary:
  bool executeUpdateWithParameterDictionary(NullableText sql,
                                            const Dictionary& parameterDictionary);

  /// executeUpdate:withVAList:
  bool executeUpdateWithVAList(NullableText sql, FMArgumentList& list);

  /// executeUpdateWithFormat:
  template <FMBindable... Arguments>
  bool executeUpdateWithFormat(NullableText format, const Arguments&... arguments) {
    return executeUpdateWithFormatAndVAList(format, FMArguments(arguments...).list());
  }

  /// executeUpdate:error:withArgumentsInArray:orDictionary:orVAList:
  ///
  /// What all updates end in; arguments as for queries.
  bool executeUpdateErrorWithArgumentsInArrayOrDictionaryOrVAList(NullableText sql,
                                                                  ErrorPlace error,
                                                                  const Array* argumentsInArray,
                                                                  const Dictionary* orDictionary,
                                                                  FMArgumentList* orVAList);

  /// bindObject:toColumn:inStatement:
  ///
  /// Binds an argument to a parameter (1-based) and returns whether SQLite took it. Nothing and the
  /// null object bind NULL; a bool or a char 0 or 1; other numbers by their type; a date the text
  /// of the date formatter, without one the seconds since 1970; any other object its description.
  ///
  /// SQLite makes no copy: a text or data has to live until the statement is closed or the
  /// parameter bound anew or cleared; so long the statement keeps the texts that are made here.
  /// False without such a parameter, for a closed statement and for one that stands at a row.
  bool bindObject(const FMArgument& object, int toColumn, FMStatement& inStatement) const;

  /// extractSQL:argumentsList:intoString:arguments:
  ///
  /// Appends to `intoString` the text with "?" for each of its specifiers, and to `arguments` what
  /// they stand for: "%@" any object; "%c" an int, as a text of that character; "%s" a text;
  /// "%d %D %i %u %U %hi %hu %ld %lu %lld %llu %qi %qu" numbers of C's types for these; "%f" a
  /// double, "%g" a double as a float. "%%" is "%", the "%" of another letter goes away, and a
  /// length without one of its letters is copied as one letter.
  ///
  /// An argument of another type than its specifier's stands as it is, in full. Nothing at all, as
  /// well as an argument missing in the list, puts NULL into the text.
  static void extractSQL(std::string_view sql, FMArgumentList& argumentsList,
                         std::string& intoString, Array& arguments);

  /// Whether statements are kept for their next execution. Off at first; turning it off drops
  /// those that no result set reads.
  bool shouldCacheStatements() const { return shouldCacheStatements_; }
  void setShouldCacheStatements(bool caches);

  /// The cache, by the text that the statements were prepared from; nothing while it is off.
  const std::optional<StatementCache>& cachedStatements() const { return cachedStatements_; }
  void setCachedStatements(std::optional<StatementCache> statements);

  /// A statement of the text that is not in use; null when there is none.
  std::shared_ptr<FMStatement> cachedStatementForQuery(NullableText query) const;

  /// setCachedStatement:forQuery:
  ///
  /// Adds the statement under the text; null stands for an empty one.
  void setCachedStatement(std::shared_ptr<FMStatement> statement, NullableText query);

  /// Closes and forgets them all, those in use too.
  void clearCachedStatements();

  /// Whether result sets of this connection are open, which does not own them; and closes them.
  bool hasOpenResultSets() const;
  void closeOpenResultSets();

  /// For a result set that closes.
  void resultSetDidClose(const FMResultSet& resultSet);

  /// Runs "begin exclusive transaction"; the others what they are called.
  bool beginTransaction();
  bool beginDeferredTransaction();
  bool commit();
  bool rollback();
  /// Whether a transaction was begun here and neither committed nor rolled back here.
  bool inTransaction() const { return inTransaction_; }

  /// startSavePointWithName:error:, releaseSavePointWithName:error:,
  /// rollbackToSavePointWithName:error:
  ///
  /// Quotes in the name are escaped. `error` receives `lastError` of a failure.
  bool startSavePointWithName(std::string_view name, ErrorPlace error);
  bool releaseSavePointWithName(std::string_view name, ErrorPlace error);
  bool rollbackToSavePointWithName(std::string_view name, ErrorPlace error);

  /// Runs `block` inside a savepoint of a fresh name. The block gets a `bool*`, and sets it to roll
  /// back to the savepoint; an exception does so as well and passes on. Returns the error of the
  /// last step that failed (start, rollback, release); the block does not run when the start fails.
  std::optional<Error> inSavePoint(const std::function<void(bool* shouldRollBack)>& block);

  /// SQLite's text and code for the last failure on the connection.
  std::string lastErrorMessage() const;
  int lastErrorCode() const;

  /// Whether the last code is in 1..99.
  bool hadError() const;

  /// An error of the domain "FMDatabase" with the last code.
  Error errorWithMessage(NullableText message) const;
  Error lastError() const;

  /// 0 when closed, and, with a line, when the connection is in use.
  std::int64_t lastInsertRowId();
  int changes();

  /// A formatter for `setDateFormat`: the pattern in GMT, in English.
  static std::shared_ptr<const DateFormatter> storeableDateFormat(std::string_view format);

  /// Sets how dates are written and read; null, as at first: as seconds since 1970.
  void setDateFormat(std::shared_ptr<const DateFormatter> format);
  bool hasDateFormatter() const { return dateFormat_ != nullptr; }

  /// Null without a formatter, for null, and for a text that tells no date.
  std::optional<Date> dateFromString(NullableText text) const;

  /// Null without a formatter.
  std::optional<std::string> stringFromDate(Date date) const;

  /// makeFunctionNamed:maximumArguments:withBlock:
  ///
  /// Makes an SQL function of that many arguments (-1 for any number), for as long as the
  /// connection is open; the block stays with the connection. An exception of the block becomes an
  /// SQL error with its text. False when the connection is closed or SQLite refuses.
  bool makeFunctionNamed(NullableText name, int maximumArguments, FunctionBlock withBlock);

  /// False: there is no encryption here.
  bool setKey(NullableText key);
  bool setKeyWithData(foundation::DataView keyData);
  bool rekey(NullableText key);
  bool rekeyWithData(foundation::DataView keyData);

  /// Copies a whole database from, or to, the file at a path. Only in memory (a null path): false
  /// with a line otherwise, and when closed.
  bool readFromFile(std::string_view path);
  bool writeToFile(std::string_view path);

  // One value: the first column of the first row; the default of the type without a row.

  template <FMBindable... Arguments>
  std::optional<std::string> stringForQuery(NullableText sql, const Arguments&... arguments) {
    return firstValue(&FMResultSet::stringForColumnIndex, executeQuery(sql, arguments...));
  }
  template <FMBindable... Arguments>
  int intForQuery(NullableText sql, const Arguments&... arguments) {
    return firstValue(&FMResultSet::intForColumnIndex, executeQuery(sql, arguments...));
  }
  template <FMBindable... Arguments>
  std::int64_t longForQuery(NullableText sql, const Arguments&... arguments) {
    return firstValue(&FMResultSet::longForColumnIndex, executeQuery(sql, arguments...));
  }
  template <FMBindable... Arguments>
  bool boolForQuery(NullableText sql, const Arguments&... arguments) {
    return firstValue(&FMResultSet::boolForColumnIndex, executeQuery(sql, arguments...));
  }
  template <FMBindable... Arguments>
  double doubleForQuery(NullableText sql, const Arguments&... arguments) {
    return firstValue(&FMResultSet::doubleForColumnIndex, executeQuery(sql, arguments...));
  }
  template <FMBindable... Arguments>
  std::optional<Data> dataForQuery(NullableText sql, const Arguments&... arguments) {
    return firstValue(&FMResultSet::dataForColumnIndex, executeQuery(sql, arguments...));
  }
  template <FMBindable... Arguments>
  std::optional<Date> dateForQuery(NullableText sql, const Arguments&... arguments) {
    return firstValue(&FMResultSet::dateForColumnIndex, executeQuery(sql, arguments...));
  }

  /// Whether there is a table of that name, in any case.
  bool tableExists(std::string_view tableName);

  /// Rows of type, name, tbl_name, rootpage and sql of all tables and indexes, temporary ones too.
  ResultSet getSchema();

  /// The columns of a table. The name is put into the text as it is: pass only trusted ones.
  ResultSet getTableSchema(std::string_view tableName);

  /// columnExists:inTableWithName:
  ///
  /// In any case of both names; the table's name as for `getTableSchema`.
  bool columnExistsInTableWithName(std::string_view columnName, std::string_view tableName);

  /// columnExists:columnName:, the older order.
  bool columnExistsColumnName(std::string_view tableName, std::string_view columnName);

  /// The application id in the header of the file; 0 when it was never set.
  std::uint32_t applicationID();
  void setApplicationID(std::uint32_t applicationID);

  /// The id as four characters (ISO Latin-1), the most significant byte first. Setting a text of
  /// another length (in UTF-16 units) leaves a line, and goes on with its first four characters,
  /// zero bytes for missing ones; a character beyond ISO Latin-1 counts as "?".
  std::string applicationIDString();
  void setApplicationIDString(std::string_view applicationIDString);

  /// The user version in the header of the file; 0 when it was never set.
  std::uint32_t userVersion();
  void setUserVersion(std::uint32_t userVersion);

  /// validateSQL:error:
  ///
  /// Whether the text can be prepared; runs nothing. `error` is of the domain "NSCocoaErrorDomain".
  bool validateSQL(NullableText sql, ErrorPlace error);

 private:
  class Execution;

  static int waitForLock(void* database, int count);
  bool didOpen(int code);
  ResultSet executeQueryWithFormatAndVAList(NullableText format, FMArgumentList& list);
  bool executeUpdateWithFormatAndVAList(NullableText format, FMArgumentList& list);
  int prepare(NullableText sql, sqlite3_stmt** statement) const;
  const std::shared_ptr<FMStatement>* findCachedStatement(std::string_view query) const;
  void discard(FMStatement& statement, NullableText sql);

  template <class T>
  static T firstValue(T (FMResultSet::*getter)(int) const, const ResultSet& resultSet) {
    if (!resultSet || !resultSet->next()) return T();
    const T value = (resultSet.get()->*getter)(0);
    resultSet->close();
    resultSet->setParentDB(nullptr);
    return value;
  }

  sqlite3* db_ = nullptr;
  const std::optional<std::string> databasePath_;
  bool logsErrors_ = true;
  bool crashOnErrors_ = false;
  bool traceExecution_ = false;
  bool checkedOut_ = false;
  bool shouldCacheStatements_ = false;
  std::atomic<bool> isExecutingStatement_ = false;  // detects re-entry; it is no lock
  bool inTransaction_ = false;
  double maxBusyRetryTimeInterval_ = 2.0;
  Date startBusyRetryTime_{};
  std::optional<StatementCache> cachedStatements_;
  mutable const StatementCache::value_type* lastCached_ = nullptr;  // found last, likely next
  std::vector<std::weak_ptr<FMResultSet>> openResultSets_;
  std::vector<std::unique_ptr<const FunctionBlock>> openFunctions_;
  std::shared_ptr<const DateFormatter> dateFormat_;
};
