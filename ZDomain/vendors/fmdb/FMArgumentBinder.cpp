#include "ZDomain/vendors/fmdb/FMArgumentBinder.h"

#include <algorithm>
#include <string>
#include <utility>

#include <sqlite3.h>

#include "platform/Console.h"

using foundation::DataView;
using foundation::Date;
using foundation::Dictionary;
using foundation::Number;
using platform::Console;

namespace {

[[gnu::cold]] void trace(const FMArgument& argument) {
  if (const auto* data = std::get_if<DataView>(&argument.content())) {
    Console::log("data: %ld bytes", data->size());
  } else {
    Console::log("obj: %@", argument.value());
  }
}

}  // namespace

// The loop over the parameters is what an update costs beyond SQLite: all of it is inline.

// A copy in the statement, or the caller's own bytes.
inline std::string_view FMArgumentBinder::held(std::string_view bytes, int column) const {
  if (bytes.size() <= copyLimit_) return statement_.keep(bytes, column);
  statement_.setBorrowing();
  return bytes;
}

// A char has the type code of a bool, and binds as one. SQLite has one kind of integer, signed.
inline int FMArgumentBinder::bindNumber(const Number& number, int column) const {
  const char code = number.objCType();
  if (code == 'd' || code == 'f') {
    return sqlite3_bind_double(handle(), column, number.doubleValue());
  }
  if (code == 'c') return sqlite3_bind_int(handle(), column, number.boolValue());
  return sqlite3_bind_int64(handle(), column,
                            static_cast<sqlite3_int64>(number.unsignedLongLongValue()));
}

inline int FMArgumentBinder::bindText(std::string_view text, int column) const {
  return sqlite3_bind_text64(handle(), column, text.data(), text.size(), SQLITE_STATIC,
                             SQLITE_UTF8);
}

inline int FMArgumentBinder::codeOfBinding(const FMArgument& argument, int column) const {
  const FMArgument::Content& content = argument.content();
  if (const auto* number = std::get_if<Number>(&content)) {
    return bindNumber(*number, column);
  }
  if (const auto* text = std::get_if<std::string_view>(&content)) {
    return bindText(held(*text, column), column);
  }
  return bindOther(content, column);
}

inline bool FMArgumentBinder::isTaken(const FMArgument& argument, int column) const {
  const int code = codeOfBinding(argument, column);
  return code == SQLITE_OK || (code == SQLITE_MISUSE && bindAfterReset(argument, column));
}

bool FMArgumentBinder::bind(const FMArgument& argument, int column) const {
  return isTaken(argument, column);
}

// A handle that somebody stepped to its end behind our back refuses until it is reset.
bool FMArgumentBinder::bindAfterReset(const FMArgument& argument, int column) const {
  statement_.reset();
  return codeOfBinding(argument, column) == SQLITE_OK;
}

int FMArgumentBinder::bindAll(const FMArgumentSources& sources) const {
  return sources.dictionary ? bindByName(*sources.dictionary) : bindInOrder(sources);
}

int FMArgumentBinder::bindInOrder(const FMArgumentSources& sources) const {
  const auto count = static_cast<std::size_t>(statement_.parameterCount());
  int bound = 0;
  std::size_t column = 0;
  if (sources.array) {
    const std::size_t inArray = std::min(count, sources.array->size());
    while (column < inArray) {
      const FMArgument argument((*sources.array)[column]);
      if (database_.traceExecution()) trace(argument);
      bound += bind(argument, static_cast<int>(++column));
    }
  }
  if (sources.list) {
    for (const FMArgument& argument : sources.list->take(count - column)) {
      if (database_.traceExecution()) trace(argument);
      bound += isTaken(argument, static_cast<int>(++column));
    }
  }
  return bound;
}

int FMArgumentBinder::bindByName(const Dictionary& dictionary) const {
  int bound = 0;
  for (const auto& [key, value] : dictionary) {
    const std::string name = ":" + key;
    const int column = sqlite3_bind_parameter_index(handle(), name.c_str());
    if (column > 0) {
      bound += bind(value, column);
    } else {
      Console::log("Could not find index for %@", key);
    }
  }
  return bound;
}

int FMArgumentBinder::bindOther(const FMArgument::Content& content, int column) const {
  if (const auto* data = std::get_if<DataView>(&content)) {
    // A null pointer would be NULL.
    if (data->empty()) return sqlite3_bind_zeroblob(handle(), column, 0);
    const std::string_view bytes = held(foundation::textOf(*data), column);
    return sqlite3_bind_blob64(handle(), column, bytes.data(), bytes.size(), SQLITE_STATIC);
  }
  if (const auto* date = std::get_if<Date>(&content)) {
    if (auto text = database_.stringFromDate(*date)) {
      return bindText(statement_.keep(*std::move(text), column), column);
    }
    return sqlite3_bind_double(handle(), column, foundation::secondsBetween(Date(), *date));
  }
  if (const auto* other = std::get_if<FMArgument::OtherObject>(&content)) {
    std::string text = other->valueOf(other->object).description();
    return bindText(statement_.keep(std::move(text), column), column);
  }
  return sqlite3_bind_null(handle(), column);
}
