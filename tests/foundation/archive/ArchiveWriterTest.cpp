#include <limits>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "foundation/archive/ArchiveWriter.h"
#include "foundation/archive/PropertyList.h"
#include "tests/foundation/archive/Samples.h"

namespace foundation {
namespace {

using std::string_literals::operator""s;
using test::Person;

TEST(ArchiveWriter, BringsEveryValueBack) {
  for (const PropertyListFormat format : test::formats) {
    const Result<Data> data = ArchiveWriter::archivedData(test::everyValue(), format);
    EXPECT_EQ(*ArchiveReader::unarchive(*data), Value(test::everyValue()));
  }
}

TEST(ArchiveWriter, StoresAnObjectOnceInThePlatformsLayout) {
  auto eve = std::make_shared<Person>();
  eve->age = -5;
  auto adam = std::make_shared<Person>();
  adam->name = nullptr;
  adam->bestFriend = eve;
  const Result<Data> data = ArchiveWriter::archivedData(Array{adam, eve});
  EXPECT_EQ(PropertyList::propertyListWithData(*data)->description(),
            "{$archiver = NSKeyedArchiver; $objects = ($null, {$class = {CF$UID = 7;}; NS.objects ="
            " ({CF$UID = 2;}, {CF$UID = 5;});}, {$$age = 0; $class = {CF$UID = 6;}; friend ="
            " {CF$UID = 5;}; name = {CF$UID = 3;};}, {$class = {CF$UID = 4;};}, {$classes ="
            " (NSNull, NSObject); $classname = NSNull;}, {$$age = -5; $class = {CF$UID = 6;}; name"
            " = {CF$UID = 0;};}, {$classes = (foundation::test::Person, NSObject); $classname ="
            " foundation::test::Person;}, {$classes = (NSArray, NSObject); $classname ="
            " NSArray;}); $top = {root = {CF$UID = 1;};}; $version = 100000;}");
  const Value people = *ArchiveReader::unarchive(*data);
  const auto first = (*people.as<Array>())[0].as<std::shared_ptr<Object>>()->get();
  EXPECT_EQ(Value(dynamic_cast<Person&>(*first).bestFriend), (*people.as<Array>())[1]);
}

class BadKey : public Person {
 public:
  void encodeWithCoder(ArchiveWriter& coder) const override { coder.encodeInteger(1, "nul\0"s); }
  ARCHIVABLE_CLASS(BadKey, Person);
};

TEST(ArchiveWriter, RefusesWhatCannotBeReadAgain) {
  auto narcissus = std::make_shared<Person>();
  narcissus->bestFriend = narcissus;
  auto deep = std::make_shared<Person>();
  for (int i = 0; i < 512; ++i) {
    auto next = std::make_shared<Person>();
    next->bestFriend = std::exchange(deep, next);
  }
  struct Unregistered : Person {};
  const std::pair<Value, const char*> cases[] = {
      {std::make_shared<Unregistered>(), "is not registered for archives"},
      {std::make_shared<BadKey>(), "key"},
      {narcissus, "an object is inside itself"},
      {deep, "the objects are nested too deeply"}};
  for (const auto& [value, reason] : cases) {
    const Result<Data> data = ArchiveWriter::archivedData(Array{value});
    ASSERT_FALSE(data) << reason;
    EXPECT_THAT(data.error().description(), testing::HasSubstr(reason));
    EXPECT_EQ(data.error().code(), 4866);
  }
  narcissus->bestFriend.reset();
}

}  // namespace
}  // namespace foundation
