#include "foundation/CharacterSet.h"

#include <utility>

#include <unicode/uniset.h>
#include <unicode/unistr.h>

#include "foundation/StringEncoding.h"

namespace foundation {

struct CharacterSet::Characters {
  // Built anew from the ranges, so that the pattern depends on nothing else.
  explicit Characters(const icu::UnicodeSet& source) {
    set.addAll(source);
    set.removeAllStrings();
    set.freeze();
  }

  icu::UnicodeSet set;
};

CharacterSet::CharacterSet() : CharacterSet(std::make_shared<Characters>(icu::UnicodeSet())) {}

CharacterSet::CharacterSet(std::shared_ptr<const Characters> characters)
    : characters_(std::move(characters)) {}

CharacterSet CharacterSet::charactersInString(std::string_view text) {
  icu::UnicodeSet set;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    set.add(character.codePoint < 0 ? 0xFFFD : character.codePoint);
    text.remove_prefix(character.length);
  }
  return CharacterSet(std::make_shared<Characters>(set));
}

CharacterSet CharacterSet::inverted() const {
  icu::UnicodeSet set(0, 0x10FFFF);
  set.removeAll(characters_->set);
  return CharacterSet(std::make_shared<Characters>(set));
}

bool CharacterSet::characterIsMember(char32_t codePoint) const {
  return characters_->set.contains(static_cast<UChar32>(codePoint));
}

std::string CharacterSet::pattern() const {
  icu::UnicodeString text;
  std::string result;
  return characters_->set.toPattern(text, true).toUTF8String(result);
}

std::optional<CharacterSet> CharacterSet::characterSetWithPattern(std::string_view pattern) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeSet set(
      icu::UnicodeString::fromUTF8({pattern.data(), static_cast<std::int32_t>(pattern.size())}),
      status);
  if (U_FAILURE(status)) return std::nullopt;
  return CharacterSet(std::make_shared<Characters>(set));
}

bool operator==(const CharacterSet& a, const CharacterSet& b) {
  return a.characters_->set == b.characters_->set;
}

}  // namespace foundation
