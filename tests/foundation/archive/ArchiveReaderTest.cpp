#include <cmath>
#include <cstdint>
#include <string>

#include <gmock/gmock.h>

#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/PropertyList.h"
#include "tests/foundation/archive/Samples.h"

namespace foundation {
namespace {

using test::Person;
using testing::HasSubstr;

Value uid(std::uint64_t number) { return Dictionary{{"CF$UID", number}}; }

Value classNamed(const char* name) { return Dictionary{{"$classname", name}}; }

// Object 1 is the root, of the class that object 2 is.
Result<Value> unarchive(Dictionary root, const char* className, const Array& more = {}) {
  root.emplace("$class", uid(2));
  Array objects = {"$null", root, classNamed(className)};
  objects.insert(objects.end(), more.begin(), more.end());
  const Dictionary list = {{"$archiver", "NSKeyedArchiver"},
                           {"$top", Dictionary{{"root", uid(1)}}},
                           {"$objects", objects}};
  return ArchiveReader::unarchive(
      *PropertyList::dataWithPropertyList(list, PropertyListFormat::Binary));
}

constexpr const char* person = "foundation::test::Person";

const Person& personOf(const Value& value) {
  return dynamic_cast<const Person&>(**value.as<std::shared_ptr<Object>>());
}

TEST(ArchiveReader, ReadsIntegersThatFit) {
  for (const Number& n : {Number(INT64_MAX), Number(INT64_MIN), Number(-2.9), Number(0x1p62)}) {
    EXPECT_EQ(personOf(*unarchive({{"$$age", n}}, person)).age, n.longLongValue());
  }
  for (const Value& stored :
       {Value(1ULL << 63), Value(0x1p63), Value(-0x1p64), Value(NAN), Value("7"), uid(0)}) {
    EXPECT_THAT(unarchive({{"$$age", stored}}, person).error().description(),
                HasSubstr("value for key ($age) is"));
  }
}

TEST(ArchiveReader, ReadsMutableFormsSkipsUnknownKeysAndKnowsNothingFromNull) {
  EXPECT_EQ(*unarchive({{"NS.objects", Array{uid(0)}}}, "NSMutableArray"), Value(Array{nullptr}));
  EXPECT_EQ(personOf(*unarchive({{"name", uid(0)}, {"later", uid(9)}}, person)).name, std::nullopt);
}

TEST(ArchiveReader, RefusesWhatIsDamaged) {
  const Value unknown = Dictionary{{"$class", uid(4)}};
  Array chain;    // people 3 … 602, each the next one's friend
  Array pyramid;  // arrays 3 … 602, each the next one twice
  for (std::uint64_t i = 4; i < 604; ++i) {
    chain.push_back(Dictionary{{"$class", uid(2)}, {"friend", uid(i)}});
    pyramid.push_back(Dictionary{{"$class", uid(603)}, {"NS.objects", Array{uid(i), uid(i)}}});
  }
  pyramid[40] = "top";
  pyramid.push_back(classNamed("NSArray"));
  const Value keys = Array{uid(3)};
  const std::tuple<Dictionary, const char*, Array, const char*> cases[] = {
      {{{"name", uid(9)}}, person, {}, "no object has the number 9"},
      {{{"name", uid(3)}}, person, {keys}, "an object has no class"},
      {{{"friend", uid(1)}}, person, {}, "the object with the number 1 is inside itself"},
      {{{"friend", uid(3)}}, person, {"text"}, "does not hold what class (foundation::test::P"},
      {{{"friend", uid(3)}}, person, {unknown, classNamed("Gone")}, "object of class (Gone)"},
      {{{"friend", uid(3)}}, person, chain, "the objects are nested too deeply"},
      {{{"name", uid(3)}}, person, pyramid, "the archive grows beyond all bounds"},
      {{{"NS.objects", Array{1}}}, "NSArray", {}, "a reference to an object is missing"},
      {{{"NS.keys", keys}, {"NS.objects", Array()}}, "NSDictionary", {"k"}, "as many keys"},
      {{{"NS.keys", keys}, {"NS.objects", keys}}, "NSDictionary", {1}, "no text"},
      {{{"NS.time", 1e300}}, "NSDate", {}, "a date is out of range"}};
  for (const auto& [root, className, more, reason] : cases) {
    const Result<Value> value = unarchive(root, className, more);
    ASSERT_FALSE(value) << reason;
    EXPECT_THAT(value.error().description(), HasSubstr(reason));
    EXPECT_EQ(value.error().code(), 4864);
  }
}

TEST(ArchiveReader, RefusesWhatIsNoArchiveOfTheClass) {
  EXPECT_FALSE(ArchiveReader::unarchivedObjectOfClass<Person>(*ArchiveWriter::archivedData("x")));
  const Result<Data> adam = ArchiveWriter::archivedData(std::make_shared<Person>());
  for (std::size_t i = 0; i < adam->size(); ++i) {
    EXPECT_FALSE(ArchiveReader::unarchive(DataView(*adam).first(i)));
    Data changed = *adam;
    changed[i] ^= 0x11;
    (void)ArchiveReader::unarchive(changed);
  }
}

}  // namespace
}  // namespace foundation
