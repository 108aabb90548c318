#include "foundation/DateFieldPattern.h"

#include <algorithm>
#include <array>
#include <utility>

namespace foundation {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::milliseconds;
using std::chrono::sys_days;
using std::chrono::year_month_day;

// In the order of the fields.
constexpr std::array<std::string_view, 14> spellings = {
    "yyyy", "MM", "dd", "HH", "mm", "ss", "SSS", "yy", "d", "MMM", "EEE", "EEEE", "zzz", "ZZZ"};

constexpr std::array<std::string_view, 7> weekdayNames = {
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr std::array<std::string_view, 12> monthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::size_t shortName = 3;
constexpr std::string_view zoneName = "GMT";

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

void appendDigits(std::string& output, std::int64_t value, std::size_t width) {
  char digits[4];
  for (std::size_t i = width; i-- > 0; value /= 10) digits[i] = static_cast<char>('0' + value % 10);
  output.append(digits, width);
}

// The functions below look at the start of a text for one field. They return the length of what
// they found, 0 for nothing.

template <std::size_t width>
std::size_t readNumber(std::string_view text, int& value) {
  if (text.size() < width) return 0;
  int number = 0;
  for (std::size_t i = 0; i < width; ++i) {
    if (!isDigit(text[i])) return 0;
    number = number * 10 + (text[i] - '0');
  }
  value = number;
  return width;
}

// A number that the next character does not go on with.
template <std::size_t width>
std::size_t readWholeNumber(std::string_view text, int& value) {
  if (text.size() > width && isDigit(text[width])) return 0;
  return readNumber<width>(text, value);
}

// The index of the name that `text` begins with, of which the first `length` letters count.
template <std::size_t count>
std::size_t readName(std::string_view text, const std::array<std::string_view, count>& names,
                     std::size_t length, int& index) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view name = names[i].substr(0, length);
    if (!text.starts_with(name)) continue;
    if (text.size() > name.size() && isLetter(text[name.size()])) return 0;
    index = static_cast<int>(i);
    return name.size();
  }
  return 0;
}

// "+0130", to the end of the text.
std::size_t readOffset(std::string_view text, int& minutes) {
  if (text.size() != 5 || (text[0] != '+' && text[0] != '-')) return 0;
  int hour = 0;
  int minute = 0;
  if (!readNumber<2>(text.substr(1), hour) || !readNumber<2>(text.substr(3), minute)) return 0;
  if (hour > 23 || minute > 59) return 0;
  minutes = hour * 60 + minute;
  if (text[0] == '-') minutes = -minutes;
  return text.size();
}

// A blank stands for a run of them.
std::size_t readLiteral(std::string_view text, char literal) {
  if (text.empty() || text.front() != literal) return 0;
  return literal == ' ' ? std::min(text.find_first_not_of(' '), text.size()) : 1;
}

}  // namespace

// What has been read so far.
struct DateFieldPattern::Reading {
  int year = 1970;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
  int weekday = -1;
  int zoneOffset = 0;  // minutes
  bool yearIsShort = false;

  // The date with a given year; nothing when a field is out of range or the weekday is another.
  std::optional<Date> date(int inYear) const {
    const year_month_day fields{std::chrono::year{inYear},
                                std::chrono::month{static_cast<unsigned>(month)},
                                std::chrono::day{static_cast<unsigned>(day)}};
    if (!fields.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    const sys_days midnight(fields);
    if (midnight < plainFieldsStart) return std::nullopt;
    if (weekday >= 0 && std::chrono::weekday(midnight) != std::chrono::weekday(unsigned(weekday))) {
      return std::nullopt;
    }
    return midnight + std::chrono::hours(hour) + std::chrono::minutes(minute - zoneOffset) +
           std::chrono::seconds(second) + milliseconds(millisecond);
  }

  // The year of a century that lies in the hundred years from `start` on. Whether the start's own
  // year does depends on the time of the year.
  std::optional<Date> dateInCentury(Date start) const {
    if (start >= plainFieldsEnd) return std::nullopt;
    const int startYear(year_month_day(floor<days>(start)).year());
    const int inYear = startYear + (year + 100 - startYear % 100) % 100;
    const std::optional<Date> found = date(inYear);
    if (inYear == startYear && found && *found < start) return date(inYear + 100);
    return found;
  }
};

std::unique_ptr<const DateFieldPattern> DateFieldPattern::parse(std::string_view pattern) {
  auto result = std::make_unique<DateFieldPattern>();
  bool quoted = false;
  while (!pattern.empty()) {
    const char c = pattern.front();
    if (c == '\'') {
      if (pattern.starts_with("''")) return nullptr;
      quoted = !quoted;
      pattern.remove_prefix(1);
      continue;
    }
    if (quoted || !isLetter(c)) {
      result->tokens_.push_back({Field::literal, c});
      pattern.remove_prefix(1);
      continue;
    }
    const std::size_t length = std::min(pattern.find_first_not_of(c), pattern.size());
    const auto spelling = std::find(spellings.begin(), spellings.end(), pattern.substr(0, length));
    if (spelling == spellings.end()) return nullptr;
    result->tokens_.push_back({static_cast<Field>(spelling - spellings.begin()), '\0'});
    pattern.remove_prefix(length);
    if (result->hasZone() && !pattern.empty()) return nullptr;
  }
  return quoted ? nullptr : std::move(result);
}

bool DateFieldPattern::hasZone() const {
  if (tokens_.empty()) return false;
  const Field last = tokens_.back().field;
  return last == Field::zoneName || last == Field::zoneOffset;
}

void DateFieldPattern::append(std::string& output, Date date) const {
  const auto midnight = floor<days>(date);
  const year_month_day ymd(midnight);
  const std::chrono::hh_mm_ss time(floor<milliseconds>(date - midnight));
  for (const Token& token : tokens_) {
    switch (token.field) {
      case Field::year:
        appendDigits(output, int{ymd.year()}, 4);
        break;
      case Field::shortYear:
        appendDigits(output, int{ymd.year()}, 2);
        break;
      case Field::month:
        appendDigits(output, unsigned{ymd.month()}, 2);
        break;
      case Field::monthName:
        output += monthNames[unsigned{ymd.month()} - 1];
        break;
      case Field::day:
        appendDigits(output, unsigned{ymd.day()}, 2);
        break;
      case Field::plainDay:
        appendDigits(output, unsigned{ymd.day()}, unsigned{ymd.day()} < 10 ? 1 : 2);
        break;
      case Field::weekday:
        output += weekdayNames[std::chrono::weekday(midnight).c_encoding()].substr(0, shortName);
        break;
      case Field::weekdayName:
        output += weekdayNames[std::chrono::weekday(midnight).c_encoding()];
        break;
      case Field::hour:
        appendDigits(output, time.hours().count(), 2);
        break;
      case Field::minute:
        appendDigits(output, time.minutes().count(), 2);
        break;
      case Field::second:
        appendDigits(output, time.seconds().count(), 2);
        break;
      case Field::millisecond:
        appendDigits(output, time.subseconds().count(), 3);
        break;
      case Field::zoneName:
        output += zoneName;
        break;
      case Field::zoneOffset:
        output += "+0000";
        break;
      case Field::literal:
        output += token.text;
        break;
    }
  }
}

std::size_t DateFieldPattern::readToken(Token token, std::string_view text, Reading& reading) {
  switch (token.field) {
    case Field::year:
      reading.yearIsShort = false;
      return readNumber<4>(text, reading.year);
    case Field::shortYear:
      reading.yearIsShort = true;
      return readWholeNumber<2>(text, reading.year);
    case Field::month:
      return readNumber<2>(text, reading.month);
    case Field::monthName:
      if (readName(text, monthNames, shortName, reading.month) == 0) return 0;
      ++reading.month;
      return shortName;
    case Field::day:
      return readNumber<2>(text, reading.day);
    case Field::plainDay:
      if (const std::size_t length = readWholeNumber<2>(text, reading.day)) return length;
      return readWholeNumber<1>(text, reading.day);
    case Field::weekday:
      return readName(text, weekdayNames, shortName, reading.weekday);
    case Field::weekdayName:
      return readName(text, weekdayNames, std::string_view::npos, reading.weekday);
    case Field::hour:
      return readNumber<2>(text, reading.hour);
    case Field::minute:
      return readNumber<2>(text, reading.minute);
    case Field::second:
      return readNumber<2>(text, reading.second);
    case Field::millisecond:
      return readNumber<3>(text, reading.millisecond);
    case Field::zoneName:
      return text == zoneName ? zoneName.size() : 0;
    case Field::zoneOffset:
      return readOffset(text, reading.zoneOffset);
    case Field::literal:
      return readLiteral(text, token.text);
  }
  return 0;
}

std::optional<Date> DateFieldPattern::read(std::string_view text, Date twoDigitStart) const {
  Reading reading;
  for (const Token& token : tokens_) {
    const std::size_t length = readToken(token, text, reading);
    if (length == 0) return std::nullopt;
    text.remove_prefix(length);
  }
  if (!text.empty()) return std::nullopt;
  return reading.yearIsShort ? reading.dateInCentury(twoDigitStart) : reading.date(reading.year);
}

}  // namespace foundation
