#include <string_view>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "foundation/Format.h"

using foundation::Array;
using foundation::NullableText;
using foundation::Number;
using foundation::Value;

namespace {

/// The letters of a specifier behind its "%", and what to make of an argument of its type.
struct Specifier {
  std::string_view letters;
  std::string_view codes;  // the type codes of the numbers that it reads
  Value (*valueOf)(const Number& number);
};

template <class T>
Value integer(const Number& number) {
  return static_cast<T>(number.longLongValue());
}
template <class T>
Value unsignedInteger(const Number& number) {
  return static_cast<T>(number.unsignedLongLongValue());
}
template <class T>
Value real(const Number& number) {
  return static_cast<T>(number.doubleValue());
}
Value character(const Number& number) {
  return foundation::format("%c", static_cast<unsigned char>(number.longLongValue()));
}

// What is narrower than an int is read as one.
constexpr std::string_view ints = "cCsSi";

// Longer ones first where one begins with another.
constexpr Specifier specifiers[] = {
    {"@", "", nullptr},
    {"c", ints, character},
    {"s", "", nullptr},
    {"d", ints, integer<int>},
    {"D", ints, integer<int>},
    {"i", ints, integer<int>},
    {"u", "CSI", unsignedInteger<unsigned>},
    {"U", "CSI", unsignedInteger<unsigned>},
    {"hi", ints, integer<short>},
    {"hu", ints, integer<unsigned short>},
    {"qi", "q", integer<long long>},
    {"qu", "Q", unsignedInteger<unsigned long long>},
    {"f", "fd", real<double>},
    {"g", "fd", real<float>},
    {"ld", "q", integer<long>},
    {"lu", "Q", unsignedInteger<unsigned long>},
    {"lld", "q", integer<long long>},
    {"llu", "Q", unsignedInteger<unsigned long long>},
};

// Prefixes that no letter of theirs follows are copied as one letter.
std::size_t prefixLength(std::string_view text) { return text.starts_with("ll") ? 2 : 1; }

const Specifier* specifierAt(std::string_view text) {
  for (const Specifier& specifier : specifiers) {
    if (text.starts_with(specifier.letters)) return &specifier;
  }
  return nullptr;
}

// An argument that is not of the specifier's type stays as it is.
std::optional<Value> objectFor(const Specifier& specifier, const FMArgument& argument) {
  const auto* const number = std::get_if<Number>(&argument.content());
  const bool fits = number && specifier.codes.find(number->objCType()) != std::string_view::npos;
  return fits ? specifier.valueOf(*number) : argument.value();
}

/// A format and its arguments, converted; a null format stays null.
struct Converted {
  Converted(NullableText format, FMArgumentList& list) {
    if (!format.isNull()) FMDatabase::extractSQL(format.view(), list, sql.emplace(), arguments);
  }

  std::optional<std::string> sql;
  Array arguments;
};

}  // namespace

void FMDatabase::extractSQL(std::string_view sql, FMArgumentList& argumentsList,
                            std::string& intoString, Array& arguments) {
  char last = '\0';
  while (!sql.empty()) {
    const char current = sql.front();
    std::size_t length = 1;
    if (last != '%') {
      if (current != '%') intoString += current;
    } else if (const Specifier* const specifier = specifierAt(sql)) {
      length = specifier->letters.size();
      const FMArgument* const argument = argumentsList.next();
      auto object = argument ? objectFor(*specifier, *argument) : std::nullopt;
      intoString += object ? "?" : "NULL";
      if (object) arguments.push_back(*std::move(object));
    } else {
      length = prefixLength(sql);
      intoString += current;
    }
    last = current;
    sql.remove_prefix(length);
  }
}

std::shared_ptr<FMResultSet> FMDatabase::executeQueryWithFormatAndVAList(NullableText format,
                                                                         FMArgumentList& list) {
  const Converted converted(format, list);
  return executeQueryWithArgumentsInArray(converted.sql, converted.arguments);
}

bool FMDatabase::executeUpdateWithFormatAndVAList(NullableText format, FMArgumentList& list) {
  const Converted converted(format, list);
  return executeUpdateWithArgumentsInArray(converted.sql, converted.arguments);
}
