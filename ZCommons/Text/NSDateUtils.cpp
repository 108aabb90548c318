#include "ZCommons/Text/NSDateUtils.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/DateFormatter.h"
#include "foundation/Unicode.h"
#include "platform/Clock.h"

using foundation::Date;
using foundation::DateFormatter;
using foundation::NullableText;
using foundation::TimeZone;

namespace {

constexpr const char* httpPattern = "EEE, dd MMM yyyy HH:mm:ss zzz";

struct HttpFormatters {
  const std::array<DateFormatter, 3> parsing = {
      DateFormatter(httpPattern, TimeZone::GMT),
      DateFormatter("EEEE, dd-MMM-yy HH:mm:ss zzz", TimeZone::GMT),
      DateFormatter("EEE MMM d HH:mm:ss yyyy", TimeZone::GMT),
  };
  const DateFormatter output{httpPattern, TimeZone::GMT};
};

const DateFormatter& iso8601Formater() {
  static const auto* const formatter =
      new DateFormatter("yyyy'-'MM'-'dd'T'HH':'mm':'ss'.'SSSZZZ", TimeZone::GMT);
  return *formatter;
}

const DateFormatter& sqliteFormater() {
  static const auto* const formatter = new DateFormatter("yyyy-MM-dd HH:mm:ss ZZZ", TimeZone::GMT);
  return *formatter;
}

const HttpFormatters& httpFormatters() {
  static const auto* const formatters = new HttpFormatters;
  return *formatters;
}

// 80 years before now, 29 February becoming the 28th where there is none.
Date twoDigitStart() {
  const Date now = platform::Clock::current().now();
  const auto midnight = std::chrono::floor<std::chrono::days>(now);
  auto day = std::chrono::year_month_day(midnight) - std::chrono::years(80);
  if (!day.ok()) day = day.year() / day.month() / std::chrono::last;
  return std::chrono::sys_days(day) + (now - midnight);
}

// The date of both pieces as one text; texts of usual length are put together without allocation.
std::optional<Date> dateFromPieces(const DateFormatter& formatter, std::string_view first,
                                   std::string_view second) {
  char text[64];
  const std::size_t length = first.size() + second.size();
  if (length > sizeof(text)) return formatter.dateFromString(std::string(first).append(second));
  first.copy(text, first.size());
  second.copy(text + first.size(), second.size());
  return formatter.dateFromString({text, length});
}

constexpr std::size_t removedFromEnd = 3;

// The text without its third UTF-16 unit from the end. Half a character that is left fits no form.
std::optional<Date> dateWithISO8601Characters(std::u32string characters) {
  std::size_t units = 0;
  auto third = characters.end();
  while (units < removedFromEnd) {
    if (third == characters.begin()) return foundation::distantPast;
    --third;
    units += *third > 0xFFFF ? 2 : 1;
  }
  if (*third > 0xFFFF) return std::nullopt;
  characters.erase(third);
  std::string text;
  for (const char32_t character : characters) foundation::appendUTF8(text, character);
  return iso8601Formater().dateFromString(text);
}

}  // namespace

namespace NSDateUtils {

void initISO8601Formater() { iso8601Formater(); }

void initSqliteFormater() { sqliteFormater(); }

void initHttpFormatters() { httpFormatters(); }

std::optional<Date> dateWithISO8601String(NullableText text) {
  const std::string_view view = text.view();
  const std::size_t third = view.size() - std::min(view.size(), removedFromEnd);
  if (view.size() - third < removedFromEnd || !foundation::isASCII(view.substr(third))) {
    return dateWithISO8601Characters(foundation::UTF32FromUTF8(view));
  }
  return dateFromPieces(iso8601Formater(), view.substr(0, third), view.substr(third + 1));
}

std::string iso8601String(Date date) {
  std::string text = iso8601Formater().stringFromDate(date);
  text.insert(text.size() - 2, 1, ':');
  return text;
}

std::optional<Date> dateWithSQliteString(NullableText text) {
  if (text.isNull()) return foundation::distantPast;
  return dateFromPieces(sqliteFormater(), text.view(), " +0000");
}

std::optional<Date> parseHttpDateFromString(NullableText text) {
  std::string_view view = text.view();
  if (view.size() > 1 && view.starts_with('\'') && view.ends_with('\'')) {
    view = view.substr(1, view.size() - 2);
  }
  const auto& formatters = httpFormatters().parsing;
  if (const auto date = formatters.front().dateFromPlainString(view)) return date;
  // No plain text has two of the forms, so the order counts for the general engine only.
  const Date start = twoDigitStart();
  for (const DateFormatter& formatter : formatters) {
    if (const auto date = formatter.dateFromPlainString(view, start)) return date;
  }
  for (const DateFormatter& formatter : formatters) {
    if (const auto date = formatter.dateFromString(view, start)) return date;
  }
  return std::nullopt;
}

std::optional<std::string> formatHttpDate(std::optional<Date> date) {
  if (!date) return std::nullopt;
  return httpFormatters().output.stringFromDate(*date);
}

}  // namespace NSDateUtils
