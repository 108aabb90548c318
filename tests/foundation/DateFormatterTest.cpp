#include <stdlib.h>
#include <time.h>

#include <random>

#include <gtest/gtest.h>

#include "foundation/DateFormatter.h"

using foundation::Date;
using foundation::DateFormatter;
using foundation::TimeZone;
using std::chrono::microseconds;
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
  struct Row {
    const char* pattern;
    Date date;
    const char* text;
  };
  const Date saturday = date(2024, 3, 9, 50707, 678999);
  const Row rows[] = {
      {pattern, saturday, "2024/03/09 14:05:07:678"},
      {"yyyyMMdd 'at' HHmm", saturday, "20240309 at 1405"},
      {"EEE, dd MMM yyyy HH:mm:ss zzz", saturday, "Sat, 09 Mar 2024 14:05:07 GMT"},
      {"yyyy-MM-dd'", saturday, "2024-03-09"},
      {"HH 'o''clock'", saturday, "14 o'clock"},
      {"yyyy-MM-dd", date(1969, 12, 31, 86399), "1969-12-31"},
      {"yyyy-MM-dd", date(12024, 1, 2), "12024-01-02"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(DateFormatter(row.pattern, TimeZone::GMT).stringFromDate(row.date), row.text);
  }
}

TEST(DateFormatter, IsStrict) {
  const DateFormatter formatter(pattern, TimeZone::GMT);
  EXPECT_EQ(formatter.dateFromString("2024/02/29 23:59:59:999"), date(2024, 2, 29, 86399, 999000));
  for (const char* text : {"", "2024/13/01 00:00:00:000", "2023/02/29 00:00:00:000",
                           "2024/01/01 24:00:00:000", "2024/01/01 00:00:60:000",
                           "2024/01/01 00:00:00:000 ", "2024/01/01", "x2024/01/01 00:00:00:000"}) {
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
      const auto read = fast.dateFromString(text);
      ASSERT_EQ(read, std::chrono::floor<std::chrono::milliseconds>(moment)) << text;
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
      const std::size_t place = random() % text.size();
      const char letter = letters[random() % letters.size()];
      switch (random() % 4) {
        case 0:
          text.erase(place, 1);
          break;
        case 1:
          text.insert(place, 1, letter);
          break;
        default:
          text[place] = letter;
      }
    }
    ASSERT_EQ(fast.dateFromString(text), engine.dateFromString(text + "'")) << text;
  }
}
