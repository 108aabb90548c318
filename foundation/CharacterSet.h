#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace foundation {

/// An immutable set of Unicode characters. A copy shares what it was copied from. Any thread.
class CharacterSet {
 public:
  /// The empty set.
  CharacterSet();

  /// The characters that occur in `text` (U+FFFD for what is not UTF-8).
  static CharacterSet charactersInString(std::string_view text);

  /// Every character that is not in this set.
  CharacterSet inverted() const;

  /// Whether the set has the character; false for numbers that are no code point.
  bool characterIsMember(char32_t codePoint) const;

  /// The set as a pattern of Unicode sets (UTS #18), such as "[;a-z]", in ASCII. Equal sets have
  /// equal patterns: archive it to keep the set.
  std::string pattern() const;

  /// The set that a pattern describes; nothing when it is not a pattern.
  static std::optional<CharacterSet> characterSetWithPattern(std::string_view pattern);

  friend bool operator==(const CharacterSet& a, const CharacterSet& b);

 private:
  struct Characters;

  explicit CharacterSet(std::shared_ptr<const Characters> characters);

  std::shared_ptr<const Characters> characters_;
};

}  // namespace foundation
