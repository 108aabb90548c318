#include "ZCommons/Network/ZCNHostPatterns.h"

#include <algorithm>

#include <unicode/uchar.h>

#include "foundation/StringEncoding.h"

namespace ZCNHostPatterns {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isHexadecimal(char c) { return isDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f'); }

// Bytes of the letter or digit at the front; 0 when there is none.
std::size_t alphanumericLength(std::string_view text) {
  const char first = text.front();
  if (isDigit(first) || ((first | 0x20) >= 'a' && (first | 0x20) <= 'z')) return 1;
  for (const std::string_view folded : {"\u017F", "\u212A"}) {
    if (text.starts_with(folded)) return folded.size();
  }
  return 0;
}

// Removes and returns the text up to `separator`, and the separator.
std::string_view takeUpTo(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view front = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return front;
}

// Whether `text` is four times what `isNumber` takes, with dots between.
template <class Predicate>
bool isDottedQuad(std::string_view text, Predicate isNumber) {
  if (std::count(text.begin(), text.end(), '.') != 3) return false;
  for (int i = 0; i < 4; ++i) {
    if (!isNumber(takeUpTo(text, '.'))) return false;
  }
  return true;
}

// [01]?[0-9][0-9]? and what is left up to 255.
bool isPaddedNumber(std::string_view text) {
  if (text.empty() || text.size() > 3) return false;
  if (!std::all_of(text.begin(), text.end(), isDigit)) return false;
  return text.size() < 3 || text <= "255";
}

// 25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d
bool isNumber(std::string_view text) {
  constexpr char otherScript = 'x';
  char digits[3];
  std::size_t count = 0;
  while (!text.empty()) {
    const foundation::Character first = foundation::firstCharacter(text);
    if (count == std::size(digits) || !u_isdigit(first.codePoint)) return false;
    digits[count++] = first.length == 1 ? text.front() : otherScript;
    text.remove_prefix(first.length);
  }
  const std::string_view number(digits, count);
  if (count < 2) return count == 1;
  if (number[0] == '0' || number[0] == otherScript) return false;
  if (count == 2 || number[0] == '1') return true;
  return number[0] == '2' && (number[1] < '5' || (number[1] == '5' && number[2] < '6'));
}

bool isGroup(std::string_view text) {
  return !text.empty() && text.size() <= 4 && std::all_of(text.begin(), text.end(), isHexadecimal);
}

}  // namespace

bool matchesDomainName(std::string_view text) {
  bool mayEnd = false;     // behind a letter or digit
  bool mayHyphen = false;  // inside a label
  while (!text.empty()) {
    std::size_t length = alphanumericLength(text);
    if (length > 0) {
      mayEnd = mayHyphen = true;
    } else if (text.front() == '-' && mayHyphen) {
      mayEnd = false;
      length = 1;
    } else if (text.front() == '.' && mayEnd) {
      mayEnd = mayHyphen = false;
      length = 1;
    } else {
      return false;
    }
    text.remove_prefix(length);
  }
  return mayEnd;
}

bool matchesIPv4(std::string_view text) { return isDottedQuad(text, isPaddedNumber); }

bool matchesIPv6(std::string_view text) {
  constexpr std::size_t allGroups = 8;
  const std::size_t gap = text.find("::");
  const bool hasGap = gap != text.npos;
  std::size_t groups = 0;
  // The groups of a part that is not empty; false when it is malformed.
  const auto count = [&groups](std::string_view part, bool isLast) {
    const std::size_t separators =
        static_cast<std::size_t>(std::count(part.begin(), part.end(), ':'));
    if (separators >= allGroups) return false;
    for (std::size_t i = 0; i <= separators; ++i) {
      const std::string_view piece = takeUpTo(part, ':');
      ++groups;
      if (isGroup(piece)) continue;
      if (!isLast || i < separators || !isDottedQuad(piece, isNumber)) return false;
      ++groups;
    }
    return true;
  };
  if (!hasGap) return count(text, true) && groups == allGroups;
  const std::string_view front = text.substr(0, gap);
  const std::string_view back = text.substr(gap + 2);
  return (front.empty() || count(front, false)) && (back.empty() || count(back, true)) &&
         groups < allGroups;
}

}  // namespace ZCNHostPatterns
