#pragma once

#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "ZDomain/vendors/fmdb/FMStatement.h"
#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/KeyValueCoding.h"
#include "foundation/NullableText.h"
#include "foundation/Value.h"

class FMDatabase;

/// The cursor over the rows of one executed query.
///
/// A connection makes it. It stands before the first row; `next` moves it. It closes itself at the
/// end of the rows, when a step fails, and when it is destroyed; while open it keeps its connection
/// alive, and its statement out of the hands of other queries. Columns count from 0. A column that
/// does not exist (index -1 is what a missing name gives), the columns before the first row, and
/// those of a closed result set read as NULL: null, 0, 0.0 or false. Nothing here throws; problems
/// are lines on the console.
///
/// Thread safety: that of its connection, one thread at a time.
///
///     for (FMResultSet& row : database->executeQuery("select id, name from person")) {
///       use(row.get<std::int64_t>(0), row.get<std::optional<std::string>>("name"));
///     }
class FMResultSet {
  struct RecentName {
    std::string name;
    int index;
  };

 public:
  /// Lets names be looked up without making strings of them.
  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      return std::hash<std::string_view>()(name);
    }
  };
  using ColumnNameToIndexMap = std::unordered_map<std::string, int, NameHash, std::equal_to<>>;

  /// resultSetWithStatement:usingParentDatabase:
  ///
  /// A result set that reads `statement`, now in use, of `database`.
  static std::shared_ptr<FMResultSet> resultSetWithStatement(std::shared_ptr<FMStatement> statement,
                                                             std::shared_ptr<FMDatabase> database);

  FMResultSet(std::shared_ptr<FMStatement> statement, std::shared_ptr<FMDatabase> database);
  ~FMResultSet();
  FMResultSet(const FMResultSet&) = delete;
  FMResultSet& operator=(const FMResultSet&) = delete;

  /// Moves to the next row. False, with the result set closed, behind the last row and when the
  /// step failed; a failure leaves one or two lines on the console. A lock is waited for by the
  /// connection's busy handler alone.
  bool next();

  /// Whether SQLite's last answer on the connection was a row.
  bool hasAnotherRow() const;

  /// Gives the statement back and leaves the connection. Harmless when closed.
  void close();

  /// The text of the query; empty when it was null.
  const std::string& query() const { return query_; }
  void setQuery(std::string query) { query_ = std::move(query); }

  /// The statement being read, for as long as the result set is open; null when closed.
  FMStatement* statement() const { return statement_.get(); }

  /// Replaces the connection; null detaches the result set, which then closes without telling it.
  /// The connection that made it closes it all the same.
  void setParentDB(std::shared_ptr<FMDatabase> database);

  /// Columns of the statement, with or without a row.
  int columnCount() const;

  /// The index of the column with this name, in any case; the last one when several share it.
  /// -1, with a warning, when there is none.
  int columnIndexForName(foundation::NullableText name) const {
    if (!name.isNull() && expectedName_ < recentNames_.size()) {
      const RecentName& expected = recentNames_[expectedName_];
      if (expected.name == name.view()) {
        expectedName_ = expectedName_ + 1 < recentNames_.size() ? expectedName_ + 1 : 0;
        return expected.index;
      }
    }
    return findColumn(name);
  }

  /// The name as SQLite reports it; nothing when there is no such column.
  std::optional<std::string> columnNameForIndex(int columnIndex) const;

  /// From lower-cased name to index, made on first use.
  const ColumnNameToIndexMap& columnNameToIndexMap() const;

  /// SQLite's integer read: the low 32 bits.
  int intForColumnIndex(int columnIndex) const;
  int intForColumn(foundation::NullableText name) const;

  /// SQLite's 64-bit integer read; a real is cut towards zero and clamped.
  std::int64_t longForColumnIndex(int columnIndex) const;
  std::int64_t longForColumn(foundation::NullableText name) const;

  /// As `longForColumnIndex`.
  std::int64_t longLongIntForColumnIndex(int columnIndex) const;
  std::int64_t longLongIntForColumn(foundation::NullableText name) const;

  /// The bits of `longLongIntForColumnIndex`.
  std::uint64_t unsignedLongLongIntForColumnIndex(int columnIndex) const;
  std::uint64_t unsignedLongLongIntForColumn(foundation::NullableText name) const;

  /// Whether `intForColumnIndex` is not 0.
  bool boolForColumnIndex(int columnIndex) const;
  bool boolForColumn(foundation::NullableText name) const;

  /// SQLite's real read.
  double doubleForColumnIndex(int columnIndex) const;
  double doubleForColumn(foundation::NullableText name) const;

  /// The text, zero bytes inside it and ill-formed UTF-8 included; null for NULL.
  std::optional<std::string> stringForColumnIndex(int columnIndex) const;
  std::optional<std::string> stringForColumn(foundation::NullableText name) const;

  /// The date that the text tells, when the connection has a date formatter (null when it tells
  /// none); else the number of seconds since 1970, to the microsecond. Null for NULL.
  std::optional<foundation::Date> dateForColumnIndex(int columnIndex) const;
  std::optional<foundation::Date> dateForColumn(foundation::NullableText name) const;

  /// A copy of the bytes (of a number: those of its text); null for NULL only.
  std::optional<foundation::Data> dataForColumnIndex(int columnIndex) const;
  std::optional<foundation::Data> dataForColumn(foundation::NullableText name) const;

  /// SQLite's own bytes, valid until the cursor moves or closes, or the column is read as another
  /// type; null for NULL.
  std::optional<foundation::DataView> dataNoCopyForColumnIndex(int columnIndex) const;
  std::optional<foundation::DataView> dataNoCopyForColumn(foundation::NullableText name) const;

  /// Whether the value is NULL.
  bool columnIndexIsNull(int columnIndex) const;
  bool columnIsNull(foundation::NullableText name) const;

  /// SQLite's own text, ended by a zero byte, valid as `dataNoCopyForColumnIndex`; null for NULL.
  const char* UTF8StringForColumnIndex(int columnIndex) const;
  const char* UTF8StringForColumnName(foundation::NullableText name) const;

  /// A 64-bit number, a double number, data or a text, by the type of the value; the null object
  /// for NULL.
  foundation::Value objectForColumnIndex(int columnIndex) const;
  foundation::Value objectForColumnName(foundation::NullableText name) const;

  /// objectAtIndexedSubscript:, objectForKeyedSubscript:
  foundation::Value operator[](int columnIndex) const { return objectForColumnIndex(columnIndex); }
  foundation::Value operator[](foundation::NullableText name) const {
    return objectForColumnName(name);
  }

  /// The value as a `T`: an integer, a real, a bool, an enumeration, a text (`std::string_view`
  /// under the rule of `dataNoCopyForColumnIndex`), data (`DataView` likewise), a date, a
  /// `foundation::Value`, or an optional of one of these. NULL gives an empty optional, and `T()`
  /// where `T` is none.
  template <class T>
  T get(int columnIndex) const;
  template <class T>
  T get(foundation::NullableText name) const {
    return get<T>(columnIndexForName(name));
  }

  /// All values by their columns' names as SQLite reports them; nothing, with a warning, when there
  /// is no row.
  std::optional<foundation::Dictionary> resultDictionary() const;

  /// The older form: keyed by lower-cased names.
  std::optional<foundation::Dictionary> resultDict() const;

  /// Sets a property of `object` for every column that is not NULL: the text of the value, for the
  /// key that is the column's name. Raises what the object raises for a key that it does not have.
  void kvcMagic(foundation::KeyValueCoding& object) const;

  class Iterator;

 private:
  sqlite3_stmt* handle() const { return statement_ ? statement_->statement() : nullptr; }
  std::optional<std::string_view> textForColumnIndex(int columnIndex) const;
  bool hasValue(int columnIndex) const;
  bool hasData() const;
  int findColumn(foundation::NullableText name) const;
  void remember(std::string_view name, int index) const;

  std::shared_ptr<FMDatabase> parentDB_;
  std::shared_ptr<FMStatement> statement_;
  std::string query_;
  mutable std::optional<ColumnNameToIndexMap> columnNameToIndexMap_;

  // Names asked for before, as they were spelled, and the one that is likely to come next: a loop
  // over rows asks for the same names in the same order again and again.
  mutable std::vector<RecentName> recentNames_;
  mutable std::size_t expectedName_ = 0;
};

/// Walks the rows of a result set, once; dereferencing gives the result set at its current row.
class FMResultSet::Iterator {
 public:
  using value_type = FMResultSet;
  using difference_type = std::ptrdiff_t;

  Iterator() = default;
  explicit Iterator(FMResultSet* resultSet) : resultSet_(resultSet) { ++*this; }

  FMResultSet& operator*() const { return *resultSet_; }
  Iterator& operator++() {
    if (resultSet_ && !resultSet_->next()) resultSet_ = nullptr;
    return *this;
  }
  void operator++(int) { ++*this; }
  bool operator==(std::default_sentinel_t) const { return resultSet_ == nullptr; }
  bool operator!=(std::default_sentinel_t) const { return resultSet_ != nullptr; }

 private:
  FMResultSet* resultSet_ = nullptr;
};

/// A range of rows: of a result set, or of what a query returned, which has no rows when the query
/// failed.
inline FMResultSet::Iterator begin(FMResultSet& resultSet) {
  return FMResultSet::Iterator(&resultSet);
}
inline std::default_sentinel_t end(FMResultSet&) { return {}; }
inline FMResultSet::Iterator begin(const std::shared_ptr<FMResultSet>& resultSet) {
  return FMResultSet::Iterator(resultSet.get());
}
inline std::default_sentinel_t end(const std::shared_ptr<FMResultSet>&) { return {}; }

namespace fmdb {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class T>
inline constexpr bool isObject =
    std::is_same_v<T, std::string> || std::is_same_v<T, std::string_view> ||
    std::is_same_v<T, foundation::Data> || std::is_same_v<T, foundation::DataView> ||
    std::is_same_v<T, foundation::Date>;

}  // namespace fmdb

template <class T>
T FMResultSet::get(int columnIndex) const {
  if constexpr (fmdb::isOptional<T>) {
    using Content = typename T::value_type;
    if constexpr (std::is_same_v<Content, std::string>) {
      return stringForColumnIndex(columnIndex);
    } else if constexpr (std::is_same_v<Content, std::string_view>) {
      return textForColumnIndex(columnIndex);
    } else if constexpr (std::is_same_v<Content, foundation::Data>) {
      return dataForColumnIndex(columnIndex);
    } else if constexpr (std::is_same_v<Content, foundation::DataView>) {
      return dataNoCopyForColumnIndex(columnIndex);
    } else if constexpr (std::is_same_v<Content, foundation::Date>) {
      return dateForColumnIndex(columnIndex);
    } else {
      if (columnIndexIsNull(columnIndex)) return std::nullopt;
      return get<Content>(columnIndex);
    }
  } else if constexpr (std::is_same_v<T, foundation::Value>) {
    return objectForColumnIndex(columnIndex);
  } else if constexpr (std::is_same_v<T, bool>) {
    return boolForColumnIndex(columnIndex);
  } else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
    return static_cast<T>(longForColumnIndex(columnIndex));
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(doubleForColumnIndex(columnIndex));
  } else {
    static_assert(fmdb::isObject<T>, "a column cannot be read as this type");
    return get<std::optional<T>>(columnIndex).value_or(T());
  }
}
