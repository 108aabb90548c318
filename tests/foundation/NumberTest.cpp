#include <climits>
#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include "foundation/Number.h"

using foundation::Number;

TEST(Number, RemembersItsType) {
  const std::pair<Number, char> rows[] = {
      {true, 'c'},     {'a', 'c'}, {static_cast<unsigned char>(1), 'C'},
      {short{1}, 's'}, {1, 'i'},   {static_cast<unsigned short>(1), 'S'},
      {1u, 'I'},       {1L, 'q'},  {1ull, 'Q'},
      {1.0f, 'f'},     {1.0, 'd'},
  };
  for (const auto& [number, code] : rows) EXPECT_EQ(number.objCType(), code);
}

TEST(Number, ConvertsWithoutSurprise) {
  struct Row {
    Number number;
    std::int64_t signedValue;
    std::uint64_t unsignedValue;
    std::string text;
  };
  const Row rows[] = {
      {true, 1, 1, "1"},
      {-1, -1, UINT64_MAX, "-1"},
      {UINT64_MAX, INT64_MAX, UINT64_MAX, "18446744073709551615"},
      {-1.9, -1, 0, "-1.9"},
      {1e300, INT64_MAX, UINT64_MAX, "1e+300"},
      {-1e300, INT64_MIN, 0, "-1e+300"},
      {NAN, 0, 0, "nan"},
      {0.1f, 0, 0, "0.1"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.number.longLongValue(), row.signedValue) << row.text;
    EXPECT_EQ(row.number.unsignedLongLongValue(), row.unsignedValue) << row.text;
    EXPECT_EQ(row.number.stringValue(), row.text);
  }
}

TEST(Number, ComparesByExactValue) {
  constexpr std::int64_t beyondReals = (std::int64_t{1} << 53) + 1;
  EXPECT_EQ(Number(true), Number(1.0));
  EXPECT_EQ(Number(INT64_MIN), Number(-0x1p63));
  EXPECT_NE(Number(-1), Number(UINT64_MAX));
  EXPECT_NE(Number(beyondReals), Number(static_cast<double>(beyondReals)));
  EXPECT_NE(Number(INT64_MAX), Number(0x1p63));
  EXPECT_NE(Number(UINT64_MAX), Number(0x1p64));
  EXPECT_NE(Number(0), Number(NAN));
}

TEST(Number, IntegerValueOfAText) {
  const std::pair<const char*, std::int64_t> rows[] = {
      {" \t+7x", 7},
      {"\u00A0\u3000-3", -3},
      {"007", 7},
      {"1e3", 1},
      {"99999999999999999999", INT64_MAX},
      {"-99999999999999999999", INT64_MIN},
  };
  for (const auto& [text, value] : rows) EXPECT_EQ(foundation::integerValue(text), value) << text;
  for (const char* text : {"", "x1", "+", "-", "+-5", "- 5", "\xFFx"}) {
    EXPECT_EQ(foundation::integerValue(text), 0) << text;
  }
}
