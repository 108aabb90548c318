#include "foundation/DateFormatter.h"

#include <time.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <vector>

#include <unicode/smpdtfmt.h>

namespace foundation {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::sys_days;

// The general engine's calendar is Julian before this day; the fields here are Gregorian.
constexpr sys_days gregorianStart = std::chrono::year(1582) / std::chrono::October / 15;
constexpr sys_days fourDigitEnd = std::chrono::year(10000) / std::chrono::January / 1;

// A trailing quote without a partner opens nothing.
std::string withoutTrailingQuote(std::string_view pattern) {
  const bool unmatched = std::count(pattern.begin(), pattern.end(), '\'') % 2 != 0;
  if (unmatched && pattern.ends_with('\'')) pattern.remove_suffix(1);
  return std::string(pattern);
}

// Seconds east of GMT at a moment of the wall clock. Zones of our days change at quarter hours, so
// one answer serves for a quarter; the last one is kept in a word: the quarter's number above the
// offset.
std::int64_t localOffset(std::int64_t time) {
  constexpr std::int64_t bias = 1 << 19;
  constexpr std::int64_t year2000 = 946684800;
  static std::atomic<std::int64_t> last{-1};
  const std::int64_t quarter = time / 900;
  const std::int64_t known = last.load(std::memory_order_relaxed);
  if (known >= 0 && known >> 20 == quarter) return (known & ((1 << 20) - 1)) - bias;
  const time_t clock = static_cast<time_t>(time);
  struct tm fields {};
  if (!localtime_r(&clock, &fields)) return 0;
  if (time >= year2000) {
    last.store((quarter << 20) | (fields.tm_gmtoff + bias), std::memory_order_relaxed);
  }
  return fields.tm_gmtoff;
}

void appendDigits(std::string& output, std::int64_t value, int width) {
  char digits[4];
  for (int i = width; i-- > 0; value /= 10) digits[i] = static_cast<char>('0' + value % 10);
  output.append(digits, static_cast<std::size_t>(width));
}

}  // namespace

/// A pattern of fixed-width numeric fields and literals.
class DateFormatter::FieldPattern {
 public:
  static std::unique_ptr<const FieldPattern> parse(std::string_view pattern);

  void append(std::string& output, Date local) const;

  /// The fields of `text` when each has its full width and is in range.
  std::optional<Date> read(std::string_view text) const;

 private:
  enum Field : std::uint8_t { year, month, day, hour, minute, second, millisecond, literal };
  static constexpr std::size_t fieldCount = literal;
  static constexpr std::array<std::string_view, fieldCount> spellings = {"yyyy", "MM", "dd", "HH",
                                                                         "mm",   "ss", "SSS"};
  struct Token {
    Field field;
    char text;
  };

  std::vector<Token> tokens_;
};

std::unique_ptr<const DateFormatter::FieldPattern> DateFormatter::FieldPattern::parse(
    std::string_view pattern) {
  auto result = std::make_unique<FieldPattern>();
  bool quoted = false;
  while (!pattern.empty()) {
    const char c = pattern.front();
    if (c == '\'') {
      if (pattern.starts_with("''")) return nullptr;
      quoted = !quoted;
      pattern.remove_prefix(1);
      continue;
    }
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (quoted || !isLetter) {
      result->tokens_.push_back({literal, c});
      pattern.remove_prefix(1);
      continue;
    }
    const std::size_t length = std::min(pattern.find_first_not_of(c), pattern.size());
    const auto spelling = std::find(spellings.begin(), spellings.end(), pattern.substr(0, length));
    if (spelling == spellings.end()) return nullptr;
    result->tokens_.push_back({static_cast<Field>(spelling - spellings.begin()), '\0'});
    pattern.remove_prefix(length);
  }
  return quoted ? nullptr : std::move(result);
}

void DateFormatter::FieldPattern::append(std::string& output, Date local) const {
  const auto midnight = floor<days>(local);
  const std::chrono::year_month_day date(midnight);
  const std::chrono::hh_mm_ss time(floor<milliseconds>(local - midnight));
  for (const Token& token : tokens_) {
    switch (token.field) {
      case year:
        appendDigits(output, int{date.year()}, 4);
        break;
      case month:
        appendDigits(output, unsigned{date.month()}, 2);
        break;
      case day:
        appendDigits(output, unsigned{date.day()}, 2);
        break;
      case hour:
        appendDigits(output, time.hours().count(), 2);
        break;
      case minute:
        appendDigits(output, time.minutes().count(), 2);
        break;
      case second:
        appendDigits(output, time.seconds().count(), 2);
        break;
      case millisecond:
        appendDigits(output, time.subseconds().count(), 3);
        break;
      case literal:
        output += token.text;
        break;
    }
  }
}

std::optional<Date> DateFormatter::FieldPattern::read(std::string_view text) const {
  std::array<int, fieldCount> values = {1970, 1, 1, 0, 0, 0, 0};
  for (const Token& token : tokens_) {
    const std::size_t width = token.field == literal ? 1 : spellings[token.field].size();
    if (text.size() < width) return std::nullopt;
    if (token.field == literal) {
      if (text.front() != token.text) return std::nullopt;
    } else {
      int value = 0;
      for (const char c : text.substr(0, width)) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
      }
      values[token.field] = value;
    }
    text.remove_prefix(width);
  }
  const std::chrono::year_month_day date{std::chrono::year{values[year]},
                                         std::chrono::month{static_cast<unsigned>(values[month])},
                                         std::chrono::day{static_cast<unsigned>(values[day])}};
  const bool timeValid = values[hour] < 24 && values[minute] < 60 && values[second] < 60;
  if (!text.empty() || !date.ok() || !timeValid || sys_days(date) < gregorianStart) {
    return std::nullopt;
  }
  return sys_days(date) + std::chrono::hours(values[hour]) + std::chrono::minutes(values[minute]) +
         seconds(values[second]) + milliseconds(values[millisecond]);
}

/// The general engine for one pattern. Its formatter keeps state while it works, so each use takes
/// a copy of its own.
class DateFormatter::Engine {
 public:
  Engine(const std::string& pattern, TimeZone zone) {
    UErrorCode status = U_ZERO_ERROR;
    formatter_ = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8(pattern),
                                                         icu::Locale("en", "US", "POSIX"), status);
    if (U_FAILURE(status)) {
      formatter_.reset();
      return;
    }
    formatter_->setLenient(false);
    formatter_->adoptTimeZone(zone == TimeZone::GMT ? icu::TimeZone::getGMT()->clone()
                                                    : icu::TimeZone::createDefault());
  }

  void append(std::string& output, Date date) const {
    if (!formatter_) return;
    const std::unique_ptr<icu::SimpleDateFormat> formatter(formatter_->clone());
    icu::UnicodeString text;
    formatter->format(static_cast<UDate>(floor<milliseconds>(date).time_since_epoch().count()),
                      text);
    text.toUTF8String(output);
  }

  std::optional<Date> read(std::string_view text) const {
    if (!formatter_) return std::nullopt;
    const std::unique_ptr<icu::SimpleDateFormat> formatter(formatter_->clone());
    const icu::UnicodeString input = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    icu::ParsePosition position(0);
    const UDate date = formatter->parse(input, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != input.length()) return std::nullopt;
    return Date(milliseconds(static_cast<std::int64_t>(date)));
  }

 private:
  std::unique_ptr<icu::SimpleDateFormat> formatter_;
};

DateFormatter::DateFormatter(std::string_view pattern, TimeZone zone)
    : pattern_(withoutTrailingQuote(pattern)),
      zone_(zone),
      fields_(FieldPattern::parse(pattern_)) {}

DateFormatter::~DateFormatter() = default;

const DateFormatter::Engine& DateFormatter::engine() const {
  std::call_once(engineOnce_, [this] { engine_ = std::make_unique<Engine>(pattern_, zone_); });
  return *engine_;
}

void DateFormatter::appendStringFromDate(std::string& output, Date date) const {
  if (!fields_ || date < gregorianStart || date >= fourDigitEnd - days(1)) {
    return engine().append(output, date);
  }
  const std::int64_t time = floor<seconds>(date).time_since_epoch().count();
  fields_->append(output, zone_ == TimeZone::GMT ? date : date + seconds(localOffset(time)));
}

std::string DateFormatter::stringFromDate(Date date) const {
  std::string text;
  appendStringFromDate(text, date);
  return text;
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text) const {
  constexpr std::size_t longestDate = 1024;
  if (text.size() > longestDate) return std::nullopt;
  if (fields_ && zone_ == TimeZone::GMT) {
    if (const std::optional<Date> date = fields_->read(text)) return date;
  }
  return engine().read(text);
}

}  // namespace foundation
