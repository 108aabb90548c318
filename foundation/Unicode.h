#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace foundation {

// What the character database of Unicode says, and the forms that a text can have. All of it is
// safe on any thread.

/// Whether every byte of `text` is below 0x80.
bool isASCII(std::string_view text);

/// Whether scanners skip the character: white space (property White_Space: space separators and
/// tabulators, U+00A0 among them) and line breaks.
bool isWhitespaceOrNewline(char32_t character);

/// Whether a UTF-8 text holds nothing but such characters, or nothing at all.
bool isBlank(std::string_view text);

/// Whether a line ends with the character: U+000A to U+000D, U+0085, U+2028 and U+2029.
bool isNewline(char32_t character);

/// The number of UTF-16 units of a UTF-8 text; an ill-formed piece counts as U+FFFD, one unit.
std::size_t UTF16Length(std::string_view text);

/// The code points of a UTF-8 text; an ill-formed piece reads as U+FFFD.
std::u32string UTF32FromUTF8(std::string_view text);

/// The UTF-8 text of code points; nothing when one is a surrogate or above U+10FFFF.
std::optional<std::string> UTF8FromUTF32(std::u32string_view codePoints);

/// Appends a code point, which is neither a surrogate nor above U+10FFFF, to a UTF-8 text.
void appendUTF8(std::string& text, char32_t codePoint);

/// The text in Unicode normalisation form KC (UAX #15): compatibility characters replaced by what
/// they stand for, then composed. The result is well-formed UTF-8, an ill-formed piece reads as
/// U+FFFD. The work grows with n log n. Raises NSMallocException when the decomposition of a text
/// that is not ASCII takes 2 GiB and more.
std::string precomposedStringWithCompatibilityMapping(std::string_view text);

/// `text` in lower case by the rules of Unicode, those of no particular language. The result is
/// well-formed UTF-8; an ill-formed piece reads as U+FFFD. Raises NSMallocException for a text of 2
/// GiB and above that is not ASCII.
std::string lowercaseString(std::string_view text);

/// Whether two UTF-8 texts are the same after full case folding (Unicode, section 3.13): "STRASSE"
/// and "straße" are. An ill-formed piece reads as U+FFFD. Raises NSMallocException for a text of 2
/// GiB and above that is not ASCII.
bool isEqualIgnoringCase(std::string_view a, std::string_view b);

}  // namespace foundation
