#include <stdlib.h>
#include <time.h>

#include <random>

#include <gtest/gtest.h>

#include "foundation/DateFormatter.h"

using foundation::Date;
using foundation::DateFormatter;
using foundation::TimeZone;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::sys_days;
using std::chrono::year;

namespace {

constexpr const char* pattern = "yyyy/MM/dd HH:mm:ss:SSS";
// An escaped quote at the end leaves the same pattern to the general engine.
constexpr const char* enginePattern = "yyyy/MM/dd HH:mm:ss:SSS''";

// Before anything asks for the zone, which is remembered then.
const bool zoneIsSet = [] {
  setenv("TZ", "Europe/Berlin", 1);
  tzset();
  return true;
}();

Date date(int y, unsigned m, unsigned d, std::int64_t seconds = 0, int micros = 0) {
  return sys_days(year(y) / std::chrono::month(m) / std::chrono::day(d)) +
         std::chrono::seconds(seconds) + microseconds(micros);
}

}  // namespace

TEST(DateFormatter, FollowsThePattern) {
  const Date saturday = date(2024, 3, 9, 50707, 678999);
  const std::tuple<const char*, Date, const char*> rows[] = {
      {pattern, saturday, "2024/03/09 14:05:07:678"},
      {"EEE, dd MMM yyyy HH:mm:ss zzz", saturday, "Sat, 09 Mar 2024 14:05:07 GMT"},
      {"yyyy-MM-dd'", saturday, "2024-03-09"},
      {"HH 'o''clock'", saturday, "14 o'clock"},
      {"yyyy-MM-dd", date(1969, 12, 31, 86399), "1969-12-31"},
      {"yyyy-MM-dd", date(12024, 1, 2), "12024-01-02"},
  };
  for (const auto& [format, moment, text] : rows) {
    EXPECT_EQ(DateFormatter(format, TimeZone::GMT).stringFromDate(moment), text);
  }
}

TEST(DateFormatter, IsStrict) {
  const DateFormatter formatter(pattern, TimeZone::GMT);
  EXPECT_EQ(formatter.dateFromString("2024/02/29 23:59:59:999"), date(2024, 2, 29, 86399, 999000));
  for (const char* text : {"", "2023/02/29 00:00:00:000", "2024/01/01 24:00:00:000",
                           "2024/01/01 00:00:60:000", "2024/01/01 00:00:00:000 ", "2024/01/01"}) {
    EXPECT_FALSE(formatter.dateFromString(text)) << text;
  }
  EXPECT_EQ(DateFormatter("HH:mm", TimeZone::GMT).dateFromString("01:00"), date(1970, 1, 1, 3600));
}

TEST(DateFormatter, FormatsAsTheGeneralEngine) {
  ASSERT_TRUE(zoneIsSet);
  std::mt19937_64 random(1);
  std::uniform_int_distribution<std::int64_t> micros(date(1500, 1, 1).time_since_epoch().count(),
                                                     date(2037, 1, 1).time_since_epoch().count());
  for (const TimeZone zone : {TimeZone::GMT, TimeZone::local}) {
    const DateFormatter fast(pattern, zone);
    const DateFormatter engine(enginePattern, zone);
    for (int i = 0; i < 3000; ++i) {
      const Date moment{microseconds(micros(random))};
      const std::string text = fast.stringFromDate(moment);
      ASSERT_EQ(text + "'", engine.stringFromDate(moment)) << moment.time_since_epoch().count();
      if (zone == TimeZone::local) continue;
      ASSERT_EQ(fast.dateFromString(text), std::chrono::floor<milliseconds>(moment)) << text;
    }
  }
}

TEST(DateFormatter, ReadsMalformedTextsAsTheGeneralEngine) {
  const DateFormatter fast(pattern, TimeZone::GMT);
  const DateFormatter engine(enginePattern, TimeZone::GMT);
  std::mt19937 random(2);
  const std::string letters = "0123456789/: -+.\t9x";
  for (int i = 0; i < 5000; ++i) {
    std::string text = "2024/03/09 14:05:07:678";
    for (auto changes = random() % 3 + 1; changes > 0; --changes) {
      // None, one or two letters in the place of none or one.
      const char letter = letters[random() % letters.size()];
      text.replace(random() % text.size(), random() % 2, random() % 3, letter);
    }
    ASSERT_EQ(fast.dateFromString(text), engine.dateFromString(text + "'")) << text;
  }
}
