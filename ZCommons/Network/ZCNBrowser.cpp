#include "ZCommons/Network/ZCNBrowser.h"

#include <algorithm>
#include <utility>

#include <unicode/unistr.h>

#include "foundation/Unicode.h"

using foundation::NullableText;
using foundation::RegularExpression;

namespace {

constexpr std::string_view versionGroup = "([0-9.]+)";
constexpr std::string_view versionCharacters = "0123456789.";

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isVersionCharacter(char c) { return versionCharacters.find(c) != std::string_view::npos; }

// Whether the character stands for itself in an expression, and folds to nothing but itself or,
// for a letter, its other case among ASCII texts.
bool isLiteral(char c) {
  constexpr std::string_view others = " /;:,_-";
  return isLetter(c) || (c >= '0' && c <= '9') || others.find(c) != std::string_view::npos;
}

char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool startsWithIgnoringCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() &&
         std::equal(start.begin(), start.end(), text.begin(),
                    [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

// The text as the engine compares it when case does not count.
std::string folded(std::string_view text) {
  std::string result;
  icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())))
      .foldCase()
      .toUTF8String(result);
  return result;
}

bool containsAny(std::string_view text, const ZCNBrowser::Strings& pieces) {
  return std::any_of(pieces.begin(), pieces.end(), [text](const std::string& piece) {
    return !piece.empty() && text.find(piece) != std::string_view::npos;
  });
}

std::optional<RegularExpression> compiled(std::string_view pattern) {
  auto expression =
      RegularExpression::regularExpressionWithPattern(pattern, RegularExpression::caseInsensitive);
  if (!expression) return std::nullopt;
  return *std::move(expression);
}

const ZCNBrowser* known(const char* name, std::string_view versionRegex, const char* alias) {
  return new ZCNBrowser(name, versionRegex, 1, {alias}, std::nullopt);
}

}  // namespace

std::optional<ZCNBrowser::PlainPattern> ZCNBrowser::PlainPattern::parse(std::string_view pattern) {
  const std::size_t group = pattern.find(versionGroup);
  if (group == std::string_view::npos) return std::nullopt;
  const std::string_view prefix = pattern.substr(0, group);
  const std::string_view suffix = pattern.substr(group + versionGroup.size());
  const bool isPlain = std::all_of(prefix.begin(), prefix.end(), isLiteral) &&
                       std::all_of(suffix.begin(), suffix.end(), isLiteral);
  if (!isPlain || prefix.empty() || isLetter(prefix.back()) || isVersionCharacter(prefix.back()) ||
      (!suffix.empty() && isVersionCharacter(suffix.front()))) {
    return std::nullopt;
  }
  return PlainPattern{std::string(prefix), std::string(suffix)};
}

// The prefix's last character has one spelling, so it is what to look for.
std::optional<std::string_view> ZCNBrowser::PlainPattern::firstVersion(
    std::string_view text) const {
  const char anchor = prefix.back();
  for (std::size_t at = text.find(anchor, prefix.size() - 1); at != std::string_view::npos;
       at = text.find(anchor, at + 1)) {
    const std::size_t start = at + 1;
    if (!startsWithIgnoringCase(text.substr(start - prefix.size()), prefix)) continue;
    const std::size_t end = std::min(text.find_first_not_of(versionCharacters, start), text.size());
    if (end > start && startsWithIgnoringCase(text.substr(end), suffix)) {
      return text.substr(start, end - start);
    }
  }
  return std::nullopt;
}

ZCNBrowser::ZCNBrowser(std::string name, std::string_view versionRegex, std::int32_t groupNumber,
                       Strings aliases, std::optional<Strings> excludeList)
    : name_(std::move(name)),
      aliases_(std::move(aliases)),
      excludeList_(std::move(excludeList)),
      versionRegex_(compiled(versionRegex)),
      versionRegexGroupNumber_(groupNumber),
      plainPattern_(groupNumber == 1 ? PlainPattern::parse(versionRegex) : std::nullopt) {}

const ZCNBrowser& ZCNBrowser::OPERA() {
  static const ZCNBrowser* const browser = known("Opera", "Version/([0-9.]+)", "Opera");
  return *browser;
}

const ZCNBrowser& ZCNBrowser::INTERNET_EXPLORER() {
  static const ZCNBrowser* const browser =
      known("Internet Explorer", "compatible; MSIE ([0-9.]+);", "MSIE");
  return *browser;
}

const ZCNBrowser& ZCNBrowser::MAXTHON() {
  static const ZCNBrowser* const browser = known("Maxthon", "Maxthon/([0-9.]+)", "Maxthon");
  return *browser;
}

const ZCNBrowser& ZCNBrowser::FIREFOX() {
  static const ZCNBrowser* const browser = known("Mozilla Firefox", "Firefox/([0-9.]+)", "Firefox");
  return *browser;
}

const ZCNBrowser& ZCNBrowser::CHROME() {
  static const ZCNBrowser* const browser = known("Google Chrome", "Chrome/([0-9.]+)", "Chrome");
  return *browser;
}

const ZCNBrowser& ZCNBrowser::SAFARI() {
  static const ZCNBrowser* const browser = known("Safari", "Version/([0-9.]+)", "Safari");
  return *browser;
}

const std::array<const ZCNBrowser*, 6>& ZCNBrowser::BROWSERS() {
  static const std::array<const ZCNBrowser*, 6> browsers = {
      &OPERA(), &INTERNET_EXPLORER(), &MAXTHON(), &FIREFOX(), &CHROME(), &SAFARI()};
  return browsers;
}

// An unknown agent counts as Opera; callers rely on getting a browser for every value.
const ZCNBrowser& ZCNBrowser::detectBrowser(NullableText userAgentValue) {
  for (const ZCNBrowser* const browser : BROWSERS()) {
    if (browser->isMatch(userAgentValue)) return *browser;
  }
  return OPERA();
}

bool ZCNBrowser::isMatch(NullableText userAgentValue) const {
  const std::string_view value = userAgentValue.view();
  if (excludeList_ && containsAny(value, *excludeList_)) return false;
  return containsAny(value, aliases_);
}

std::optional<std::string> ZCNBrowser::version(NullableText userAgentValue) const {
  const std::string_view value = userAgentValue.view();
  if (value.empty() || !versionRegex_ || versionRegexGroupNumber_ < 0) return std::nullopt;
  if (plainPattern_) {
    if (foundation::isASCII(value)) {
      const auto found = plainPattern_->firstVersion(value);
      return found ? std::optional<std::string>(*found) : std::nullopt;
    }
    // Letters beyond ASCII can stand for letters of the fixed text, such as U+017F for "s".
    if (!plainPattern_->firstVersion(folded(value))) return std::nullopt;
  }
  const auto match = versionRegex_->firstMatchInString(value);
  const auto group = static_cast<std::size_t>(versionRegexGroupNumber_);
  if (!match || group >= match->size() || !(*match)[group]) return std::nullopt;
  const RegularExpression::Range range = *(*match)[group];
  return std::string(value.substr(range.location, range.length));
}
