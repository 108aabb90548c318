#include "foundation/DateFormatter.h"

#include <time.h>

#include <algorithm>
#include <atomic>

#include <unicode/smpdtfmt.h>

#include "foundation/DateFieldPattern.h"

namespace foundation {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::milliseconds;
using std::chrono::seconds;

// A trailing quote without a partner opens nothing.
std::string withoutTrailingQuote(std::string_view pattern) {
  const bool unmatched = std::count(pattern.begin(), pattern.end(), '\'') % 2 != 0;
  if (unmatched && pattern.ends_with('\'')) pattern.remove_suffix(1);
  return std::string(pattern);
}

// Seconds east of GMT at a moment of the wall clock. Zones change at quarter hours (some did at
// other minutes up to 2022), so one answer serves for a quarter; the last one is kept in a word:
// the quarter's number above the offset.
std::int64_t localOffset(std::int64_t time) {
  constexpr std::int64_t bias = 1 << 19;
  constexpr std::int64_t year2023 = 1672531200;
  static std::atomic<std::int64_t> last{-1};
  const std::int64_t quarter = time / 900;
  const std::int64_t known = last.load(std::memory_order_relaxed);
  if (known >= 0 && known >> 20 == quarter) return (known & ((1 << 20) - 1)) - bias;
  const time_t clock = static_cast<time_t>(time);
  struct tm fields {};
  if (!localtime_r(&clock, &fields)) return 0;
  if (time >= year2023) {
    last.store((quarter << 20) | (fields.tm_gmtoff + bias), std::memory_order_relaxed);
  }
  return fields.tm_gmtoff;
}

UDate engineDate(Date date) {
  return static_cast<UDate>(floor<milliseconds>(date).time_since_epoch().count());
}

}  // namespace

/// The general engine for one pattern. Its formatter keeps state while it works, so each use has
/// one for itself. Copies are dear, so the last one stays for the next use.
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

  ~Engine() { delete spare_.load(); }

  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  void append(std::string& output, Date date) const {
    if (!formatter_) return;
    icu::UnicodeString text;
    const Use use(*this);
    use.formatter().format(engineDate(date), text);
    text.toUTF8String(output);
  }

  std::optional<Date> read(std::string_view text, Date twoDigitStart) const {
    if (!formatter_) return std::nullopt;
    const icu::UnicodeString input = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    const Use use(*this);
    UErrorCode status = U_ZERO_ERROR;
    use.formatter().set2DigitYearStart(engineDate(twoDigitStart), status);
    icu::ParsePosition position(0);
    const UDate date = use.formatter().parse(input, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != input.length()) return std::nullopt;
    return Date(milliseconds(static_cast<std::int64_t>(date)));
  }

 private:
  // A formatter that nobody else uses meanwhile: the spare one, or a copy that may become it.
  class Use {
   public:
    explicit Use(const Engine& engine)
        : engine_(engine), formatter_(engine.spare_.exchange(nullptr, std::memory_order_acquire)) {
      if (!formatter_) formatter_.reset(engine.formatter_->clone());
    }
    ~Use() {
      formatter_.reset(engine_.spare_.exchange(formatter_.release(), std::memory_order_acq_rel));
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    icu::SimpleDateFormat& formatter() const { return *formatter_; }

   private:
    const Engine& engine_;
    std::unique_ptr<icu::SimpleDateFormat> formatter_;
  };

  std::unique_ptr<icu::SimpleDateFormat> formatter_;
  mutable std::atomic<icu::SimpleDateFormat*> spare_{nullptr};  // owned
};

DateFormatter::DateFormatter(std::string_view pattern, TimeZone zone)
    : pattern_(withoutTrailingQuote(pattern)),
      zone_(zone),
      fields_(DateFieldPattern::parse(pattern_)) {
  if (zone_ == TimeZone::local && fields_ && fields_->hasZone()) fields_.reset();
}

DateFormatter::~DateFormatter() = default;

const DateFormatter::Engine& DateFormatter::engine() const {
  std::call_once(engineOnce_, [this] { engine_ = std::make_unique<Engine>(pattern_, zone_); });
  return *engine_;
}

void DateFormatter::appendStringFromDate(std::string& output, Date date) const {
  if (!fields_ || date < plainFieldsStart || date >= plainFieldsEnd - days(1)) {
    return engine().append(output, date);
  }
  if (zone_ == TimeZone::GMT) return fields_->append(output, date);
  const std::int64_t time = floor<seconds>(date).time_since_epoch().count();
  fields_->append(output, date + seconds(localOffset(time)));
}

std::string DateFormatter::stringFromDate(Date date) const {
  std::string text;
  appendStringFromDate(text, date);
  return text;
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text, Date twoDigitStart) const {
  constexpr std::size_t longestDate = 1024;
  if (text.size() > longestDate) return std::nullopt;
  if (const auto date = dateFromPlainString(text, twoDigitStart)) return date;
  return engine().read(text, twoDigitStart);
}

std::optional<Date> DateFormatter::dateFromPlainString(std::string_view text,
                                                       Date twoDigitStart) const {
  if (!fields_ || zone_ == TimeZone::local) return std::nullopt;
  return fields_->read(text, twoDigitStart);
}

}  // namespace foundation
