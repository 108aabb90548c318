#pragma once

#include <concepts>
#include <optional>
#include <string>

#include "foundation/Date.h"
#include "foundation/NullableText.h"
#include "foundation/Value.h"

/// The date texts of ISO 8601, of SQLite columns and of HTTP headers, in GMT and English whatever
/// the process's zone and locale are.
///
/// Parsing is strict: a field out of range or text left over gives null. Dates before 15 October
/// 1582 are Julian. Ill-formed UTF-8 reads as U+FFFD, which no form has. Thread safety: any thread,
/// side by side.
namespace NSDateUtils {

/// Make the formatters of one kind, once. Every operation does so by itself when it needs them; a
/// program calls these only to have that behind it.
void initISO8601Formater();
void initSqliteFormater();
void initHttpFormatters();

/// dateWithISO8601String:
///
/// The date of "2019-01-02T03:04:05.678+01:00". The third character (UTF-16 unit) from the end, the
/// colon of the offset, is removed whatever it is before the text is read. Null when the text does
/// not fit then, the distant past when it is null or has two characters or fewer.
std::optional<foundation::Date> dateWithISO8601String(foundation::NullableText text);

/// The date in GMT as ISO 8601 text, "2019-01-02T02:04:05.678+00:00"; microseconds are cut.
std::string iso8601String(foundation::Date date);

/// dateWithSQliteString:
///
/// The date of "2019-01-02 03:04:05", which counts as GMT. Null when the text does not fit, the
/// distant past when it is null.
std::optional<foundation::Date> dateWithSQliteString(foundation::NullableText text);

/// dateWithSQliteString:
///
/// As above for an object that may be none: the distant past when it is not a text.
template <class Object>
requires(std::same_as<Object, foundation::Value> ||
         std::same_as<Object, std::optional<foundation::Value>>)
    std::optional<foundation::Date> dateWithSQliteString(const Object& object) {
  const std::optional<foundation::Value>& value = object;
  const std::string* const text = value ? value->template as<std::string>() : nullptr;
  if (!text) return foundation::distantPast;
  return dateWithSQliteString(foundation::NullableText(*text));
}

/// parseHttpDateFromString:
///
/// The date of one of the three forms of HTTP (RFC 9110, section 5.6.7): "Sun, 06 Nov 1994 08:49:37
/// GMT", "Sunday, 06-Nov-94 08:49:37 GMT", "Sun Nov  6 08:49:37 1994". Single quotes around it are
/// dropped; a weekday that is not the date's is ignored; a year of two digits lies in the hundred
/// years that began 80 years ago. Null for null and for every other form.
std::optional<foundation::Date> parseHttpDateFromString(foundation::NullableText text);

/// formatHttpDate:
///
/// The date as HTTP text, "Sun, 06 Nov 1994 08:49:37 GMT", seconds cut; null for null.
std::optional<std::string> formatHttpDate(std::optional<foundation::Date> date);

}  // namespace NSDateUtils
