#include <tuple>

#include <gmock/gmock.h>

#include "ZCommons/Data/ZCDCopied.h"
#include "ZCommons/Data/ZCDObject.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"

using foundation::ArchiveReader;
using foundation::ArchiveWriter;
using foundation::PropertyListFormat;
using foundation::Value;
using testing::ElementsAre;

namespace {

class Account : public ZCDObject {
 public:
  std::string name = "new";
  std::int32_t count = 1;
  const bool flag = true;
  std::uint64_t bits = 5;
  std::shared_ptr<Account> shared;
  ZCDCopied<Account> copied;
  ZCD_PROPERTIES(Account, ZCDObject, name, count, flag, bits, shared, copied);
};

class Plain : public Account {
 public:
  ZCD_PROPERTIES(Plain, Account);
};

class Savings : public Plain {
 public:
  std::optional<double> rate = 0.5;
  ZCD_PROPERTIES(Savings, Plain, rate);
};

// Another version of Account: without `count`, `name` of another type, and one more.
class Account2 : public ZCDObject {
 public:
  foundation::Data name = {7};
  std::string currency = "EUR";
  std::shared_ptr<Account2> shared;
  ZCD_PROPERTIES(Account2, ZCDObject, name, currency, shared);
};

TEST(ZCDObject, NamesThePropertiesOfEveryLevel) {
  EXPECT_THAT(ZCDObject::propertyNamesArray(), ElementsAre());
  EXPECT_THAT(Account::propertyNamesArray(), ElementsAre("name", "count", "shared", "copied"));
  EXPECT_EQ(Plain::propertyNamesArray(), Account::propertyNamesArray());
  EXPECT_THAT(Savings::propertyNamesArray(),
              ElementsAre("rate", "name", "count", "shared", "copied", "name", "count", "shared",
                          "copied"));
}

TEST(ZCDObject, ArchivesAndCopiesItsPersistentProperties) {
  auto original = std::make_shared<Savings>();
  original->name = "Ada";
  original->count = -7;
  original->bits = 9;
  original->rate = std::nullopt;
  original->shared = std::make_shared<Savings>();
  original->copied = original->shared;
  original->shared->name = "changed later";
  const auto data = ArchiveWriter::archivedData(original);
  const auto again = ArchiveReader::unarchivedObjectOfClass<Savings>(*data);
  EXPECT_EQ(original->copy()->shared, original->shared);
  EXPECT_NE(original->copy()->copied.get(), original->copied.get());
  for (const auto& record : {original->copy(), *again}) {
    EXPECT_THAT(std::tuple(record->name, record->count, record->bits, record->rate),
                testing::FieldsAre("Ada", -7, 5U, std::nullopt));
    EXPECT_EQ(record->shared->name, "changed later");
    EXPECT_EQ(record->copied->name, "new");
  }
}

TEST(ZCDObject, ReadsAFileOfAnotherVersionOfTheClass) {
  auto account = std::make_shared<Account>();
  account->shared = std::make_shared<Account>();
  const auto data = ArchiveWriter::archivedData(account, PropertyListFormat::XML);
  std::string text(foundation::textOf(*data));
  for (std::size_t at = 0; (at = text.find("::Account<", at)) != text.npos; at += 10) {
    text.insert(at + 9, "2");
  }
  const auto later = ArchiveReader::unarchivedObjectOfClass<Account2>(foundation::dataOf(text));
  EXPECT_EQ((*later)->name, foundation::Data{7});
  EXPECT_TRUE((*later)->shared);
  EXPECT_FALSE(ArchiveReader::unarchivedObjectOfClass<Account2>(*data));
}

TEST(ZCDObject, IsReadAndSetByName) {
  Savings savings;
  savings.setValueForKey("12 apples", "count");
  EXPECT_EQ(savings.valueForKey("count"), Value(12));
  using foundation::NSInvalidArgumentException, foundation::NSUndefinedKeyException;
  EXPECT_THROW(savings.setValueForKey(nullptr, "count"), NSInvalidArgumentException);
  EXPECT_THROW(savings.setValueForKey(true, "flag"), NSUndefinedKeyException);
}

}  // namespace
