#include <random>

#include <gtest/gtest.h>

#include "ZCommons/Text/NSDateUtils.h"
#include "foundation/DateFormatter.h"
#include "platform/SimulatedClock.h"

using namespace std::chrono;
using foundation::Date, foundation::DateFormatter, foundation::NullableText, foundation::TimeZone;

namespace {

Date date(int y, unsigned m, unsigned d, std::int64_t millis = 0) {
  return sys_days(year(y) / month(m) / day(d)) + milliseconds(millis);
}

// Around our days, the change of calendars, the year 10000, and far away.
Date randomDate(std::mt19937_64& random) {
  const int years[][2] = {{1930, 2060}, {1582, 1583}, {9999, 10001}, {-300, 12000}};
  const auto& [first, end] = years[random() % std::size(years)];
  const auto span = static_cast<std::uint64_t>((date(end, 1, 1) - date(first, 1, 1)).count());
  return date(first, 1, 1) + microseconds(random() % span);
}

// None, one or two letters in the place of none or one, up to twice.
std::string disturbed(std::string text, std::mt19937_64& random) {
  constexpr std::string_view letters = "0123456789/: -+.,\t9xMuGZ";
  for (auto changes = random() % 3; changes > 0; --changes) {
    const char letter = letters[random() % letters.size()];
    text.replace(random() % text.size(), random() % 2, random() % 3, letter);
  }
  return text;
}

}  // namespace

TEST(NSDateUtils, ReadsISO8601WithoutTheThirdCharacterFromTheEnd) {
  const std::pair<NullableText, std::optional<Date>> rows[] = {
      {"2019-01-02T03:04:05.678+01:00", date(2019, 1, 2, 7445678)},
      {"2019-01-02T03:04:05.678+01é00", date(2019, 1, 2, 7445678)},
      {"2019-01-02T03:04:05.678+01\U0001F60000", std::nullopt},
      {"\U0001F600", foundation::distantPast},
      {nullptr, foundation::distantPast},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(NSDateUtils::dateWithISO8601String(text), expected) << text.view();
  }
}

TEST(NSDateUtils, ReadsSQLiteTextsAsGMT) {
  const foundation::Value text("2019-01-02 03:04:05"), number(1);
  EXPECT_EQ(NSDateUtils::dateWithSQliteString(text), date(2019, 1, 2, 11045000));
  EXPECT_EQ(NSDateUtils::dateWithSQliteString(""), std::nullopt);
  EXPECT_EQ(NSDateUtils::dateWithSQliteString(number), foundation::distantPast);
}

TEST(NSDateUtils, ReadsTheThreeFormsOfHttp) {
  platform::SimulatedClock clock(date(2024, 2, 29, 43200000));
  const platform::Clock::Replacement guard(clock);
  const Date moment = date(1994, 11, 6, 31777000);
  const std::pair<NullableText, std::optional<Date>> rows[] = {
      {"'Sun, 06 Nov 1994 08:49:37 GMT'", moment},
      {"Sunday, 06-Nov-94 08:49:37 GMT", moment},
      {"Sun Nov  6 08:49:37 1994", moment},
      {"Tuesday, 29-Feb-44 12:00:00 GMT", date(1944, 2, 29, 43200000)},
      {"Monday, 29-Feb-44 11:59:59 GMT", date(2044, 2, 29, 43199000)},
      {"Sun, 31 Nov 1994 08:49:37 GMT", std::nullopt},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(NSDateUtils::parseHttpDateFromString(text), expected) << text.view();
  }
  EXPECT_EQ(NSDateUtils::formatHttpDate(moment), "Sun, 06 Nov 1994 08:49:37 GMT");
  EXPECT_EQ(NSDateUtils::formatHttpDate(std::nullopt), std::nullopt);
}

// The spellings EE, ZZ and zz mean what EEE, ZZZ and zzz mean, but only to the general engine.
TEST(NSDateUtils, AgreesWithTheGeneralEngine) {
  const DateFormatter iso("yyyy-MM-dd'T'HH:mm:ss.SSSZZ", TimeZone::GMT);
  const DateFormatter sqlite("yyyy-MM-dd HH:mm:ss ZZ", TimeZone::GMT);
  const DateFormatter http[] = {{"EE, dd MMM yyyy HH:mm:ss zz", TimeZone::GMT},
                                {"EEEE, dd-MMM-yy HH:mm:ss zz", TimeZone::GMT},
                                {"EE MMM d HH:mm:ss yyyy", TimeZone::GMT}};
  platform::SimulatedClock clock(date(2025, 6, 1, 1234567));
  const platform::Clock::Replacement guard(clock);
  std::mt19937_64 random(2);
  for (int i = 0; i < 2000; ++i) {
    const Date moment = randomDate(random);
    std::string text = iso.stringFromDate(moment);
    ASSERT_EQ(NSDateUtils::iso8601String(moment), std::string(text).insert(text.size() - 2, ":"));
    ASSERT_EQ(NSDateUtils::formatHttpDate(moment), http[0].stringFromDate(moment)) << text;

    text = disturbed(text, random);
    const std::string withColon = std::string(text).insert(text.size() - 2, ":");
    ASSERT_EQ(NSDateUtils::dateWithISO8601String(withColon), iso.dateFromString(text)) << text;
    text = disturbed(sqlite.stringFromDate(moment).substr(0, 19), random);
    ASSERT_EQ(NSDateUtils::dateWithSQliteString(text), sqlite.dateFromString(text + " +0000"));
    for (const DateFormatter& form : http) {
      text = disturbed(form.stringFromDate(moment), random);
      std::optional<Date> expected;
      for (const DateFormatter& formatter : http) {
        if (!expected) expected = formatter.dateFromString(text, date(1945, 6, 1, 1234567));
      }
      ASSERT_EQ(NSDateUtils::parseHttpDateFromString(text), expected) << text;
    }
  }
}
