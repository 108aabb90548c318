#include <climits>

#include <gtest/gtest.h>

#include "foundation/Format.h"
#include "foundation/URL.h"

using foundation::format;

TEST(Format, FillsEveryConversion) {
  const foundation::URL url = foundation::URL::fileURLWithPath("/a b");
  const auto* const address = reinterpret_cast<const void*>(0x1f0);
  const std::optional<std::string> absent;
  const char* const null = nullptr;
  const std::pair<std::string, std::string> rows[] = {
      {format("(%@ %s) \"%@\"", "main", "f", std::string("x")), "(main f) \"x\""},
      {format("%@ %s %d %p", null, absent, nullptr, nullptr), "(null) (null) (null) 0x0"},
      {format("%@ %@", url, std::optional(url)), "file:///a%20b file:///a%20b"},
      {format("%p %@", address, address), "0x1f0 0x1f0"},
      {format("%d %i %u %lld", -1, 2, 3u, LLONG_MIN), "-1 2 3 -9223372036854775808"},
      {format("%x %X %lx %u", -1, 255, -1L, static_cast<short>(-1)),
       "ffffffff FF ffffffffffffffff 65535"},
      {format("%5d|%-5d|%05d|%+d|%.3d", 42, 42, 42, 42, 7), "   42|42   |00042|+42|007"},
      {format("%02x%02x", static_cast<unsigned char>(10), static_cast<unsigned char>(255)), "0aff"},
      {format("%.2f %g %e", 1.005, 1e300, 12.0), "1.00 1e+300 1.200000e+01"},
      {format("%c%c", 'A', 0xE9), "A\u00E9"},
      {format("%5s|%-5@|%.2s", "ab", "ab", "\u00E4\u00F6\u00FC"), "   ab|ab   |\u00E4\u00F6"},
      {format("%s", std::string_view("a\0b", 3)), std::string("a\0b", 3)},
  };
  for (const auto& [actual, expected] : rows) EXPECT_EQ(actual, expected);
}

TEST(Format, IsDefinedForEveryMismatch) {
  const std::pair<std::string, std::string> rows[] = {
      {format("%d %f %x", "text", "text", 1.5), "text text 1.5"},
      {format("%s %@", 7, 1.5), "7 1.5"},
      {format("%@ %@", 1), "1 (null)"},
      {format("%@", 1, 2), "1"},
      {format("100%% %y %*d %", 1), "100% %y %*d %"},
      {format("%n%l"), "%n%l"},
  };
  for (const auto& [actual, expected] : rows) EXPECT_EQ(actual, expected);
  EXPECT_EQ(format("%999999999d", 1).size(), 4096u);
  EXPECT_LE(format("%.999999999f", 1.0).size(), 4100u);
}
