#include <limits>

#include <gmock/gmock.h>

#include "foundation/KeyValueCoding.h"
#include "foundation/PropertyValue.h"

namespace foundation {
namespace {

// A property of type T that holds `initial`, after it was set to `value`; null when it does not go.
template <class T>
std::optional<T> set(const std::optional<Value>& value, T initial = T()) {
  if (PropertyValue<T>::unbox(value, initial)) return initial;
  return std::nullopt;
}

TEST(PropertyValue, ConvertsNumbersAsCDoesAndClampsTexts) {
  EXPECT_EQ(set<std::int32_t>(7.9), 7);
  EXPECT_EQ(set<std::int8_t>(300), std::int8_t{44});
  EXPECT_EQ(set<std::uint64_t>(-1), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(set<std::uint64_t>("-1"), std::uint64_t{0});
  EXPECT_EQ(set<float>("\xC2\xA0+1.5e1 m"), 15.0F);
  EXPECT_EQ(set<double>("-1e999"), -std::numeric_limits<double>::infinity());
  for (const char* yes : {"YES", "true", " -001", "9"}) EXPECT_TRUE(*set<bool>(yes)) << yes;
  for (const char* no : {"", "NO", "000", "+", "x1"}) EXPECT_FALSE(*set<bool>(no)) << no;
}

TEST(PropertyValue, TakesNullWhereThereIsOneAndNoOtherType) {
  for (const std::optional<Value>& null : {std::optional<Value>(), std::optional<Value>(Null())}) {
    EXPECT_EQ(set<std::int32_t>(null), std::nullopt);
    EXPECT_EQ(set<std::string>(null, "x"), "");
    EXPECT_FALSE(*set<std::optional<std::string>>(null, "x"));
  }
  struct Special : Object {};
  EXPECT_EQ(set<std::optional<Number>>("1"), std::nullopt);
  EXPECT_EQ(set<std::shared_ptr<Special>>(std::make_shared<Object>()), std::nullopt);
}

TEST(KeyValueCoding, RaisesForEveryKeyUnlessAClassKnowsIt) {
  EXPECT_THAT([] { KeyValueCoding().setValueForKey(1, "k"); },
              testing::ThrowsMessage<NSUndefinedKeyException>(
                  testing::EndsWith("> setValue:forUndefinedKey:]: this class is not key value "
                                    "coding-compliant for the key k.")));
}

}  // namespace
}  // namespace foundation
