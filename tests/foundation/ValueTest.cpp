#include <chrono>
#include <memory>

#include <gtest/gtest.h>

#include "foundation/Value.h"

using foundation::Array;
using foundation::Data;
using foundation::Dictionary;
using foundation::Value;

namespace {

struct Account : foundation::Object {
  explicit Account(int accountNumber) : number(accountNumber) {}
  bool isEqual(const foundation::Object& other) const override {
    const auto* account = dynamic_cast<const Account*>(&other);
    return account && account->number == number;
  }
  int number;
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
  const auto object = std::make_shared<foundation::Object>();
  EXPECT_TRUE(Value(object).description().starts_with("<foundation::Object: 0x"));
}

TEST(Value, ComparesByContent) {
  EXPECT_EQ(Value(1), Value(1.0));
  EXPECT_NE(Value(1), Value("1"));
  EXPECT_NE(Value(), Value(0));
  EXPECT_EQ(Value(std::make_shared<Account>(1)), Value(std::make_shared<Account>(1)));
  EXPECT_NE(Value(std::make_shared<Account>(1)), Value(std::make_shared<Account>(2)));
  EXPECT_TRUE(Value(std::shared_ptr<Account>()).isNull());
}
