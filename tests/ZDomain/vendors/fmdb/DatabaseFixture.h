#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "tests/support/RecordingConsole.h"

/// A test with an open database in memory.
class DatabaseFixture : public testing::Test {
 protected:
  using Array = foundation::Array;
  using Data = foundation::Data;
  using Date = foundation::Date;
  using Dictionary = foundation::Dictionary;
  using Error = foundation::Error;
  using Null = foundation::Null;
  using Number = foundation::Number;
  using Value = foundation::Value;

  DatabaseFixture() { database->open(); }

  /// The lines on the console since the last call, each with its end.
  std::string said() {
    std::string text;
    const auto lines = console_.lines();
    for (; heard_ < lines.size(); ++heard_) text += lines[heard_] + "\n";
    return text;
  }

 private:
  support::RecordingConsole console_;
  std::size_t heard_ = 0;

 protected:
  const std::shared_ptr<FMDatabase> database = FMDatabase::databaseWithPath();
};
