#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Value.h"

struct sqlite3_stmt;

/// One prepared statement, as connections cache it and result sets read from it.
///
/// Owns the handle, and what its parameters point to: SQLite makes no copy of texts and data, so
/// the statement keeps them until it is closed, its bindings are cleared, or the parameter is bound
/// anew. Close it before the connection it was prepared on. One thread at a time.
class FMStatement : public foundation::Object {
 public:
  /// Takes the handle over; null makes a closed statement.
  explicit FMStatement(sqlite3_stmt* statement = nullptr);
  ~FMStatement() override { close(); }
  FMStatement(const FMStatement&) = delete;
  FMStatement& operator=(const FMStatement&) = delete;

  /// Finalizes the handle, if there is one; the statement is in use no more. Returns SQLite's code:
  /// 0, or why the last step failed.
  int close();

  /// Resets the handle, if there is one, so that it can be stepped from the start; the bindings
  /// stay. The statement is in use no more. Returns SQLite's code, as `close`.
  int reset();

  /// Sets all parameters to NULL and lets go of what was kept for them.
  void clearBindings();

  /// As `clearBindings`, when something is kept.
  void clearKeptBindings() {
    if (!kept_.empty()) clearBindings();
  }

  /// keep:column:
  ///
  /// Copies bytes, or takes a text over, for a parameter (1-based; one that exists) that is going
  /// to point to them, in place of what was kept for that parameter before.
  std::string_view keep(std::string_view bytes, int column) { return place(column).assign(bytes); }
  std::string_view keep(std::string&& text, int column) { return place(column) = std::move(text); }

  /// Whether a parameter may point to something that is not kept here: somebody else's, who clears
  /// the bindings, or binds anew, before its end.
  bool isBorrowing() const { return isBorrowing_; }
  void setBorrowing() { isBorrowing_ = true; }

  /// The handle; null once closed.
  sqlite3_stmt* statement() const { return statement_; }

  /// How many parameters it has.
  int parameterCount() const { return parameterCount_; }

  /// The text that it was cached under.
  const std::string& query() const { return query_; }
  void setQuery(std::string query) { query_ = std::move(query); }

  /// How many times it was executed.
  std::int64_t useCount() const { return useCount_; }
  void setUseCount(std::int64_t useCount) { useCount_ = useCount; }

  /// Whether a result set reads from it.
  bool inUse() const { return inUse_; }
  void setInUse(bool inUse) { inUse_ = inUse; }

  /// "<FMStatement: 0x…> 3 hit(s) for query select 1"
  std::string description() const override;

 private:
  std::string& place(int column) {
    if (kept_.empty()) kept_.resize(static_cast<std::size_t>(parameterCount_));
    return kept_[static_cast<std::size_t>(column - 1)];
  }

  sqlite3_stmt* statement_;
  const int parameterCount_;
  std::string query_;
  std::int64_t useCount_ = 0;
  bool inUse_ = false;
  bool isBorrowing_ = false;

  // Element i is what parameter i + 1 points to. Empty, or one element a parameter: it never grows
  // while parameters point into it.
  std::vector<std::string> kept_;
};
