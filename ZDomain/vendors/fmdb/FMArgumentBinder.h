#pragma once

#include <cstddef>
#include <string_view>

#include "ZDomain/vendors/fmdb/FMArgument.h"
#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "ZDomain/vendors/fmdb/FMStatement.h"
#include "foundation/Number.h"
#include "foundation/Value.h"

/// Where the parameters of a statement get their arguments from; each may be null.
struct FMArgumentSources {
  const foundation::Array* array;
  const foundation::Dictionary* dictionary;
  FMArgumentList* list;
};

/// Binds arguments to the parameters of one statement, for the sources of this folder.
class FMArgumentBinder {
 public:
  /// Texts and data of up to `copyLimit` bytes are copied into the statement, longer ones borrowed.
  FMArgumentBinder(const FMDatabase& database, FMStatement& statement, std::size_t copyLimit)
      : database_(database), statement_(statement), copyLimit_(copyLimit) {}

  /// Whether SQLite took the argument for the parameter (1-based), which exists.
  bool bind(const FMArgument& argument, int column) const;

  /// Binds as many parameters as there are arguments for, and returns how many SQLite took. Traces
  /// those that have no name, when the connection traces.
  int bindAll(const FMArgumentSources& sources) const;

 private:
  int bindInOrder(const FMArgumentSources& sources) const;
  int bindByName(const foundation::Dictionary& dictionary) const;
  bool isTaken(const FMArgument& argument, int column) const;
  [[gnu::cold]] bool bindAfterReset(const FMArgument& argument, int column) const;
  int codeOfBinding(const FMArgument& argument, int column) const;
  int bindNumber(const foundation::Number& number, int column) const;
  int bindText(std::string_view text, int column) const;
  int bindOther(const FMArgument::Content& content, int column) const;
  std::string_view held(std::string_view bytes, int column) const;
  sqlite3_stmt* handle() const { return statement_.statement(); }

  const FMDatabase& database_;
  FMStatement& statement_;
  const std::size_t copyLimit_;
};
