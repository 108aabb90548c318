#include "foundation/Unicode.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/utf.h>
#include <unicode/utf8.h>

#include "foundation/NSException.h"
#include "foundation/StringEncoding.h"

namespace foundation {
namespace {

// Calls `use` with each code point of a UTF-8 text.
template <class Use>
void forEachCodePoint(std::string_view text, Use use) {
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    use(character.codePoint < 0 ? U'\uFFFD' : static_cast<char32_t>(character.codePoint));
    text.remove_prefix(character.length);
  }
}

char lowercaseASCII(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// What `convert`, a function of ICU, writes for `text`.
template <class Convert>
std::string converted(std::string_view text, Convert convert) {
  if (text.size() > std::numeric_limits<std::int32_t>::max()) raiseMallocException("text");
  std::string result;
  UErrorCode status = U_ZERO_ERROR;
  icu::StringByteSink<std::string> sink(&result, static_cast<std::int32_t>(text.size()));
  convert(text, sink, status);
  if (U_FAILURE(status)) raiseMallocException("text");
  return result;
}

std::string caseFolded(std::string_view text) {
  return converted(text, [](icu::StringPiece piece, icu::ByteSink& sink, UErrorCode& status) {
    icu::CaseMap::utf8Fold(0, piece, sink, nullptr, status);
  });
}

const icu::Normalizer2& normalizer() {
  static const icu::Normalizer2* const instance = [] {
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer2::getNFKCInstance(status);
  }();
  if (!instance) raiseMallocException("normalizer");
  return *instance;
}

// The compatibility decomposition, well-formed and with its combining marks in canonical order.
std::string decomposed(std::string_view text) {
  std::u32string result;
  icu::UnicodeString mapping;
  forEachCodePoint(text, [&](char32_t codePoint) {
    if (!normalizer().getDecomposition(static_cast<UChar32>(codePoint), mapping)) {
      result += codePoint;
      return;
    }
    for (std::int32_t i = 0; i < mapping.length(); i = mapping.moveIndex32(i, 1)) {
      result += static_cast<char32_t>(mapping.char32At(i));
    }
  });
  const auto combiningClass = [](char32_t c) {
    return u_getCombiningClass(static_cast<UChar32>(c));
  };
  for (auto begin = result.begin(); begin != result.end();) {
    begin = std::find_if(begin, result.end(), combiningClass);
    const auto end = std::find_if_not(begin, result.end(), combiningClass);
    std::stable_sort(begin, end, [&](char32_t left, char32_t right) {
      return combiningClass(left) < combiningClass(right);
    });
    begin = end;
  }
  return *UTF8FromUTF32(result);
}

std::string normalised(std::string_view text) {
  return converted(text, [](icu::StringPiece piece, icu::ByteSink& sink, UErrorCode& status) {
    normalizer().normalizeUTF8(0, piece, sink, nullptr, status);
  });
}

}  // namespace

bool isASCII(std::string_view text) {
  // Without an early exit the loop runs on vectors.
  unsigned char all = 0;
  for (const char c : text) all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

bool isWhitespaceOrNewline(char32_t character) {
  return u_isUWhiteSpace(static_cast<UChar32>(character));
}

bool isBlank(std::string_view text) {
  while (!text.empty()) {
    const Character first = firstCharacter(text);
    if (!isWhitespaceOrNewline(static_cast<char32_t>(first.codePoint))) return false;
    text.remove_prefix(first.length);
  }
  return true;
}

bool isNewline(char32_t character) {
  return (character >= U'\n' && character <= U'\r') || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

std::size_t UTF16Length(std::string_view text) {
  std::size_t length = 0;
  forEachCodePoint(text, [&](char32_t codePoint) { length += codePoint > 0xFFFF ? 2u : 1u; });
  return length;
}

std::u32string UTF32FromUTF8(std::string_view text) {
  std::u32string result;
  result.reserve(text.size());
  forEachCodePoint(text, [&](char32_t codePoint) { result += codePoint; });
  return result;
}

std::optional<std::string> UTF8FromUTF32(std::u32string_view codePoints) {
  std::string result;
  result.reserve(codePoints.size());
  for (const char32_t codePoint : codePoints) {
    if (codePoint > 0x10FFFF || U_IS_SURROGATE(codePoint)) return std::nullopt;
    appendUTF8(result, codePoint);
  }
  return result;
}

void appendUTF8(std::string& text, char32_t codePoint) {
  char bytes[U8_MAX_LENGTH];
  std::size_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, codePoint);
  text.append(bytes, length);
}

std::string precomposedStringWithCompatibilityMapping(std::string_view text) {
  // The normaliser keeps ill-formed pieces, and takes quadratic time to put a row of marks in
  // order.
  constexpr std::size_t longText = 4096;
  if (isASCII(text)) return std::string(text);
  if (text.size() > longText || !isValidUTF8(text)) return normalised(decomposed(text));
  return normalised(text);
}

std::string lowercaseString(std::string_view text) {
  if (!isASCII(text)) {
    return converted(text, [](icu::StringPiece piece, icu::ByteSink& sink, UErrorCode& status) {
      icu::CaseMap::utf8ToLower("", 0, piece, sink, nullptr, status);
    });
  }
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lowercaseASCII);
  return result;
}

bool isEqualIgnoringCase(std::string_view a, std::string_view b) {
  if (!isASCII(a) || !isASCII(b)) return caseFolded(a) == caseFolded(b);
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char c, char d) { return lowercaseASCII(c) == lowercaseASCII(d); });
}

}  // namespace foundation
