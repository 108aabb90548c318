#include "ZDomain/vendors/fmdb/FMStatementKeywordRecogniser.h"

#include <utility>

#include "foundation/StringEncoding.h"
#include "foundation/Unicode.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"

using foundation::Array;
using foundation::CharacterSet;
using foundation::Value;

namespace {

using Keywords = std::vector<std::string>;

// The UTF-16 unit that a text, which is not empty, begins with.
char32_t firstUnit(std::string_view text) {
  const std::int32_t codePoint = foundation::firstCharacter(text).codePoint;
  if (codePoint < 0) return U'\uFFFD';
  const auto character = static_cast<char32_t>(codePoint);
  return character > 0xFFFF ? 0xD7C0 + (character >> 10) : character;
}

std::optional<Keywords> keywordsOf(const std::optional<Value>& value) {
  if (!value || value->isNull()) return Keywords();
  const auto* array = value->as<Array>();
  if (!array) return std::nullopt;
  Keywords keywords;
  for (const Value& element : *array) {
    const auto* keyword = element.as<std::string>();
    if (!keyword) return std::nullopt;
    keywords.push_back(*keyword);
  }
  return keywords;
}

}  // namespace

FMStatementKeywordRecogniser::FMStatementKeywordRecogniser(std::string keyword)
    : FMStatementKeywordRecogniser(std::move(keyword), std::nullopt) {}

FMStatementKeywordRecogniser::FMStatementKeywordRecogniser(Keywords keywords)
    : FMStatementKeywordRecogniser(std::move(keywords), std::nullopt) {}

FMStatementKeywordRecogniser::FMStatementKeywordRecogniser(
    std::string keyword, std::optional<CharacterSet> invalidFollowingCharacters)
    : invalidFollowingCharacters_(std::move(invalidFollowingCharacters)) {
  keywords_.push_back(std::move(keyword));
}

FMStatementKeywordRecogniser::FMStatementKeywordRecogniser(
    Keywords keywords, std::optional<CharacterSet> invalidFollowingCharacters)
    : keywords_(std::move(keywords)),
      invalidFollowingCharacters_(std::move(invalidFollowingCharacters)) {}

std::shared_ptr<FMStatementKeywordRecogniser> FMStatementKeywordRecogniser::recogniserForKeyword(
    std::string keyword) {
  return std::make_shared<FMStatementKeywordRecogniser>(std::move(keyword));
}

std::shared_ptr<FMStatementKeywordRecogniser> FMStatementKeywordRecogniser::recogniserForKeywords(
    Keywords keywords) {
  return std::make_shared<FMStatementKeywordRecogniser>(std::move(keywords));
}

std::shared_ptr<FMStatementKeywordRecogniser> FMStatementKeywordRecogniser::recogniserForKeyword(
    std::string keyword, std::optional<CharacterSet> invalidFollowingCharacters) {
  return std::make_shared<FMStatementKeywordRecogniser>(std::move(keyword),
                                                        std::move(invalidFollowingCharacters));
}

std::shared_ptr<FMStatementKeywordRecogniser> FMStatementKeywordRecogniser::recogniserForKeywords(
    Keywords keywords, std::optional<CharacterSet> invalidFollowingCharacters) {
  return std::make_shared<FMStatementKeywordRecogniser>(std::move(keywords),
                                                        std::move(invalidFollowingCharacters));
}

bool FMStatementKeywordRecogniser::mayStandBefore(std::string_view rest) const {
  if (rest.empty() || !invalidFollowingCharacters_) return true;
  return !invalidFollowingCharacters_->characterIsMember(firstUnit(rest));
}

FMStatementRecogniser::Range FMStatementKeywordRecogniser::recogniseRangeWithScanner(
    const FMStatementScanner& scanner, std::size_t& currentTokenPosition) const {
  if (currentTokenPosition >= scanner.string().size()) return {};
  const std::string_view rest = scanner.string().substr(currentTokenPosition);
  for (const std::string& keyword : keywords_) {
    const std::size_t units = foundation::UTF16Length(keyword);
    const std::string_view candidate = prefix(rest, units);
    if (foundation::UTF16Length(candidate) != units) continue;
    if (!foundation::isEqualIgnoringCase(candidate, keyword)) continue;
    if (!mayStandBefore(rest.substr(candidate.size()))) continue;
    const std::size_t start =
        std::exchange(currentTokenPosition, currentTokenPosition + candidate.size());
    return {start, candidate.size()};
  }
  return {};
}

bool FMStatementKeywordRecogniser::initWithCoder(foundation::ArchiveReader& coder) {
  std::optional<Keywords> keywords = keywordsOf(coder.decodeObjectForKey("K.k"));
  if (!keywords) return false;
  keywords_ = *std::move(keywords);
  const std::optional<Value> following = coder.decodeObjectForKey("K.f");
  if (!following || following->isNull()) return true;
  const auto* pattern = following->as<std::string>();
  if (pattern) invalidFollowingCharacters_ = CharacterSet::characterSetWithPattern(*pattern);
  return invalidFollowingCharacters_.has_value();
}

void FMStatementKeywordRecogniser::encodeWithCoder(foundation::ArchiveWriter& coder) const {
  std::optional<Value> following;
  if (invalidFollowingCharacters_) following = invalidFollowingCharacters_->pattern();
  coder.encodeObject(Array(keywords_.begin(), keywords_.end()), "K.k");
  coder.encodeObject(following, "K.f");
}
