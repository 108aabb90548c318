#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "foundation/archive/Archivable.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"

namespace foundation::test {

constexpr PropertyListFormat formats[] = {PropertyListFormat::XML, PropertyListFormat::Binary};

/// Values of every kind, the hard ones among them.
inline Array everyValue() {
  using std::string_literals::operator""s;
  using Signed = std::numeric_limits<std::int64_t>;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Array values = {nullptr, true, false, Data(), Data{0, 255}, Array(), Dictionary()};
  for (const std::int64_t n : {Signed::min(), Signed::max(), -5'000'000'000L, -1L, 0L, 128L}) {
    values.emplace_back(n);
    values.emplace_back(Date(Date::duration(n)));
  }
  values.emplace_back(std::uint64_t{1} << 63);
  values.emplace_back(std::numeric_limits<std::uint64_t>::max());
  for (const double n : {0.1, 1.0 / 3, -0.0, 1e300, 5e-324, double{0.1F}, infinity, -infinity}) {
    values.emplace_back(n);
  }
  for (const std::int64_t microseconds :
       {978'307'199'250'000, 978'307'200'000'001, 4'102'444'800'000'000, -30'000'000'000'000'000}) {
    values.emplace_back(Date(Date::duration(microseconds)));
  }
  values.emplace_back(distantPast);
  values.emplace_back(distantFuture);
  for (const std::string& text : {""s, " \r\n\t x "s, "a<b>&\"']]>&amp;"s, "h\xC3\xA9"s, "nul\0"s,
                                  "\xF0\x9F\x98\x80"s, "\x01\x1F"s, "\xFF\xC3"s}) {
    values.emplace_back(text);
    values.emplace_back(Dictionary{{text, Array{text, text}}});
  }
  for (const char* key : {"$type", "$class", "CF$UID"}) values.push_back(Dictionary{{key, 7}});
  values.push_back(Dictionary{{"$type", "date"}, {"$value", "12"}});
  return values;
}

/// An archivable class with an object, an integer and a friend of its own class.
class Person : public Archivable {
 public:
  bool initWithCoder(ArchiveReader& coder) override {
    name = coder.decodeObjectForKey("name");
    age = coder.decodeIntegerForKey("$age");
    const std::optional<Value> other = coder.decodeObjectForKey("friend");
    if (!other) return true;
    const auto* object = other->as<std::shared_ptr<Object>>();
    bestFriend = object ? std::dynamic_pointer_cast<Person>(*object) : nullptr;
    return bestFriend != nullptr;
  }
  void encodeWithCoder(ArchiveWriter& coder) const override {
    coder.encodeObject(name, "name");
    coder.encodeInteger(age, "$age");
    if (bestFriend) coder.encodeObject(bestFriend, "friend");
  }

  std::optional<Value> name;
  std::int64_t age = 0;
  std::shared_ptr<Person> bestFriend;

  ARCHIVABLE_CLASS(Person, Archivable);
};

}  // namespace foundation::test
