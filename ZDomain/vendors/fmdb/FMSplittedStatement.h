#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "foundation/Value.h"

/// One statement of a batch that an `FMSQLStatementSplitter` has cut.
///
/// The statements of one batch share its text, which lives as long as any of them. Thread safety:
/// as a value; statements of one batch may be used on different threads.
class FMSplittedStatement final : public foundation::Object {
 public:
  explicit FMSplittedStatement(std::string statementString) {
    setStatementString(std::move(statementString));
  }

  /// A statement that is a part of `batch`, which it shares.
  FMSplittedStatement(std::shared_ptr<const std::string> batch, std::string_view statementString)
      : batch_(std::move(batch)), statementString_(statementString) {}

  /// The text, its ";" included; valid while this object, or a copy, keeps it.
  std::string_view statementString() const { return statementString_; }
  void setStatementString(std::string statementString);

  /// "<FMSplittedStatement: 0x…> select 1;"
  std::string description() const override;

 private:
  std::shared_ptr<const std::string> batch_;
  std::string_view statementString_;  // into `batch_`
};
