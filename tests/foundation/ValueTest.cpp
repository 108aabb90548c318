#include <chrono>
#include <memory>

#include <gtest/gtest.h>

#include "foundation/Value.h"

using foundation::Array;
using foundation::Data;
using foundation::Dictionary;
using foundation::Object;
using foundation::Value;

namespace {

/// Equal to every object.
struct Equal : Object {
  bool isEqual(const Object&) const override { return true; }
};

}  // namespace

TEST(Value, DescribesItself) {
  using std::chrono::sys_days, std::chrono::seconds, std::chrono::year;
  const foundation::Date date = sys_days(year(2024) / 3 / 9) + seconds(50707);
  const std::pair<Value, const char*> rows[] = {
      {nullptr, "<null>"},
      {"text", "text"},
      {-3, "-3"},
      {Data{10, 255}, "<0aff>"},
      {date, "2024-03-09 14:05:07 +0000"},
      {Array{1, "a", Array{}}, "(1, a, ())"},
      {Dictionary{{"b", 1}, {"a", nullptr}}, "{a = <null>; b = 1;}"},
  };
  for (const auto& [value, text] : rows) EXPECT_EQ(value.description(), text);
  const Value object(std::make_shared<Object>());
  EXPECT_TRUE(object.description().starts_with("<foundation::Object: 0x"));
}

TEST(Value, ComparesByContent) {
  EXPECT_EQ(Value(1), Value(1.0));
  EXPECT_NE(Value(1), Value("1"));
  EXPECT_NE(Value(), Value(0));
  EXPECT_EQ(Value(std::make_shared<Equal>()), Value(std::make_shared<Equal>()));
  EXPECT_NE(Value(std::make_shared<Object>()), Value(std::make_shared<Object>()));
  EXPECT_TRUE(Value(std::shared_ptr<Equal>()).isNull());
}
