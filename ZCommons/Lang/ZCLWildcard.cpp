#include "ZCommons/Lang/ZCLWildcard.h"

#include <string.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "foundation/StringEncoding.h"
#include "logging/DDLogMacros.h"

using foundation::RegularExpression;
using foundation::Result;

namespace {

// Bytes of the character at the front that "*" and "?" may stand for; 0 for a line end.
std::size_t matchableLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return lead >= '\n' && lead <= '\r' ? 0 : 1;
  const foundation::Character first = foundation::firstCharacter(text);
  const bool isLineEnd =
      first.codePoint == 0x85 || first.codePoint == 0x2028 || first.codePoint == 0x2029;
  return isLineEnd ? 0 : first.length;
}

// Whether every character is one byte that is no line end: no byte is below 0x20 or above 0x7F.
// Looks at eight bytes at once; subtracting borrows only where a byte is below.
bool isPlain(std::string_view text) {
  constexpr std::uint64_t ones = 0x0101010101010101;
  const auto special = [](std::uint64_t bytes) { return bytes | (bytes - ones * 0x20); };
  const auto specialAt = [&](std::size_t position) {
    std::uint64_t bytes;
    memcpy(&bytes, text.data() + position, sizeof bytes);
    return special(bytes);
  };
  std::uint64_t found = 0;
  if (text.size() < sizeof found) {
    for (const char c : text) found |= special(ones * static_cast<unsigned char>(c));
  } else {
    for (std::size_t i = 0; i + sizeof found < text.size(); i += sizeof found) {
      found |= specialAt(i);
    }
    found |= specialAt(text.size() - sizeof found);
  }
  return (found & (ones * 0x80)) == 0;
}

// Whether `piece`, which has no star, matches the beginning of a plain text that is long enough.
bool matchesFront(std::string_view piece, std::string_view text) {
  for (std::size_t i = 0; i < piece.size(); ++i) {
    if (piece[i] != text[i] && piece[i] != '?') return false;
  }
  return true;
}

// Whether a plain text matches what begins and ends with a star. The pieces between stars go as far
// to the left as they can.
bool matchesMiddle(std::string_view wildcard, std::string_view text) {
  while (wildcard.size() > 1) {
    wildcard.remove_prefix(1);
    const std::string_view piece = wildcard.substr(0, wildcard.find('*'));
    while (true) {
      if (text.size() < piece.size()) return false;
      if (matchesFront(piece, text)) break;
      text.remove_prefix(1);
    }
    text.remove_prefix(piece.size());
    wildcard.remove_prefix(piece.size());
  }
  return true;
}

// Whether any text matches an option-free wildcard. Only the last star ever has to give way, so
// time is bounded by the product of both lengths. Bytes can be compared one by one, since no
// well-formed character begins inside another.
bool matchesAny(std::string_view wildcard, std::string_view text) {
  std::size_t position = 0;
  std::size_t afterStar = std::string_view::npos;
  std::string_view starRest;  // what the last star has not taken yet
  while (!text.empty()) {
    const char expected = position < wildcard.size() ? wildcard[position] : '\0';
    if (expected == '*') {
      afterStar = ++position;
      starRest = text;
      continue;
    }
    const bool atEnd = position == wildcard.size();
    const std::size_t length = atEnd             ? 0
                               : expected == '?' ? matchableLength(text)
                                                 : expected == text.front();
    if (length > 0) {
      ++position;
      text.remove_prefix(length);
      continue;
    }
    if (afterStar == std::string_view::npos) return false;
    const std::size_t taken = matchableLength(starRest);
    if (taken == 0) return false;
    starRest.remove_prefix(taken);
    text = starRest;
    position = afterStar;
  }
  return wildcard.find_first_not_of('*', position) == std::string_view::npos;
}

}  // namespace

ZCLWildcard::ZCLWildcard(RegularExpression expression, std::string_view wildcard)
    : RegularExpression(std::move(expression)),
      patternString_(wildcard),
      shortcut_(extractShortcut(wildcard)),
      // In the engine U+FFFD and bytes that are not UTF-8 match each other.
      needsEngine_(options() != none || !foundation::isValidUTF8(wildcard) ||
                   wildcard.find("\uFFFD") != std::string_view::npos),
      headLength_(std::min(wildcard.find('*'), wildcard.size())),
      tailLength_(headLength_ == wildcard.size() ? 0 : wildcard.size() - wildcard.rfind('*') - 1) {}

std::optional<ZCLWildcard> ZCLWildcard::wildcard(std::string_view wildcard) {
  return ZCLWildcard::wildcard(wildcard, none);
}

std::optional<ZCLWildcard> ZCLWildcard::wildcard(std::string_view wildcard, unsigned options) {
  Result<ZCLWildcard> result = initWithWildcard(wildcard, options);
  if (result) return *std::move(result);
  DDLogWarn(52, "(%@) Can't create regex for: %@", THIS_FILE, wildcard);
  DDLogWarn(53, "(%@) Regex creation error: %@", THIS_FILE, result.error().localizedDescription());
  return std::nullopt;
}

Result<ZCLWildcard> ZCLWildcard::initWithWildcard(std::string_view wildcard, unsigned options) {
  Result<RegularExpression> expression =
      regularExpressionWithPattern(regexFromWildcard(wildcard), options);
  if (!expression) return expression.error();
  return ZCLWildcard(*std::move(expression), wildcard);
}

std::string ZCLWildcard::regexFromWildcard(std::string_view wildcard) {
  std::string pattern = "^";
  while (!wildcard.empty()) {
    const std::size_t end = std::min(wildcard.find_first_of("*?"), wildcard.size());
    pattern += escapedPatternForString(wildcard.substr(0, end));
    if (end < wildcard.size()) pattern += wildcard[end] == '*' ? ".*" : ".";
    wildcard.remove_prefix(std::min(end + 1, wildcard.size()));
  }
  return pattern + "$";
}

std::string ZCLWildcard::extractShortcut(std::string_view wildcard) {
  std::string_view longest;
  while (!wildcard.empty()) {
    const std::size_t end = std::min(wildcard.find_first_of("*?"), wildcard.size());
    if (end > longest.size()) longest = wildcard.substr(0, end);
    wildcard.remove_prefix(std::min(end + 1, wildcard.size()));
  }
  return std::string(longest);
}

bool ZCLWildcard::matchWildcard(foundation::NullableText string) const {
  const std::string_view text = string.view();
  if (text.empty()) return false;
  if (needsEngine_) return matchesExpression(text);
  return isPlain(text) ? matchesPlain(text) : matchesAny(patternString_, text);
}

bool ZCLWildcard::matchesPlain(std::string_view text) const {
  const std::string_view wildcard = patternString_;
  if (text.size() < headLength_ + tailLength_) return false;
  const std::string_view tail = text.substr(text.size() - tailLength_);
  if (!matchesFront(wildcard.substr(0, headLength_), text)) return false;
  if (!matchesFront(wildcard.substr(wildcard.size() - tailLength_), tail)) return false;
  if (headLength_ == wildcard.size()) return text.size() == headLength_;
  const std::size_t bothLengths = headLength_ + tailLength_;
  return matchesMiddle(wildcard.substr(headLength_, wildcard.size() - bothLengths),
                       text.substr(headLength_, text.size() - bothLengths));
}

bool ZCLWildcard::matchesExpression(std::string_view text) const {
  if (text.find(shortcut_) == std::string_view::npos) return false;
  const std::optional<Match> match = firstMatchInString(text);
  return match && match->front() == Range{0, text.size()};
}
