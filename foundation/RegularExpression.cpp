#include "foundation/RegularExpression.h"

#include <unicode/regex.h>
#include <unicode/utext.h>

#include "foundation/Format.h"

namespace foundation {
namespace {

// Steps of the engine, about a millisecond each, after which a match is given up: no input may
// hang its caller.
constexpr int32_t timeLimit = 2000;

struct FlagPair {
  unsigned option;
  uint32_t flag;
};

constexpr FlagPair flagPairs[] = {
    {RegularExpression::caseInsensitive, UREGEX_CASE_INSENSITIVE},
    {RegularExpression::allowCommentsAndWhitespace, UREGEX_COMMENTS},
    {RegularExpression::ignoreMetacharacters, UREGEX_LITERAL},
    {RegularExpression::dotMatchesLineSeparators, UREGEX_DOTALL},
    {RegularExpression::anchorsMatchLines, UREGEX_MULTILINE},
    {RegularExpression::useUnixLineSeparators, UREGEX_UNIX_LINES},
    {RegularExpression::useUnicodeWordBoundaries, UREGEX_UWORD},
};

uint32_t engineFlags(unsigned options) {
  uint32_t flags = 0;
  for (const FlagPair& pair : flagPairs) {
    if (options & pair.option) flags |= pair.flag;
  }
  return flags;
}

// UTF-8 text as the engine reads it, without a copy.
class Text {
 public:
  explicit Text(std::string_view text) {
    utext_openUTF8(&text_, text.data(), static_cast<int64_t>(text.size()), &status_);
  }
  ~Text() { utext_close(&text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  UText* get() { return &text_; }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  UText text_ = UTEXT_INITIALIZER;
};

}  // namespace

struct RegularExpression::Compiled {
  std::string pattern;
  unsigned options;
  std::unique_ptr<icu::RegexPattern> engine;

  std::unique_ptr<icu::RegexMatcher> find(Text& text) const {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(engine->matcher(status));
    if (U_FAILURE(status)) return nullptr;
    matcher->setTimeLimit(timeLimit, status);
    matcher->reset(text.get());
    return matcher->find(status) && U_SUCCESS(status) ? std::move(matcher) : nullptr;
  }
};

RegularExpression::RegularExpression(std::shared_ptr<const Compiled> compiled)
    : compiled_(std::move(compiled)) {}

Result<RegularExpression> RegularExpression::regularExpressionWithPattern(std::string_view pattern,
                                                                          unsigned options) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError place{};
  Text text(pattern);
  std::unique_ptr<icu::RegexPattern> engine(
      icu::RegexPattern::compile(text.get(), engineFlags(options), place, status));
  if (U_FAILURE(status)) {
    return Error("NSCocoaErrorDomain", status,
                 format("The value is not a regular expression: %s at line %d, offset %d.",
                        u_errorName(status), place.line, place.offset));
  }
  return RegularExpression(
      std::make_shared<const Compiled>(Compiled{std::string(pattern), options, std::move(engine)}));
}

std::string RegularExpression::escapedPatternForString(std::string_view text) {
  constexpr std::string_view metacharacters = "\\*?+[](){}^$|./#-&";
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (metacharacters.find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

const std::string& RegularExpression::pattern() const { return compiled_->pattern; }

unsigned RegularExpression::options() const { return compiled_->options; }

std::optional<RegularExpression::Match> RegularExpression::firstMatchInString(
    std::string_view text) const {
  Text input(text);
  const auto matcher = compiled_->find(input);
  if (!matcher) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  Match match;
  for (int32_t group = 0; group <= matcher->groupCount(); ++group) {
    const int64_t start = matcher->start64(group, status);
    const int64_t end = matcher->end64(group, status);
    if (U_FAILURE(status) || start < 0) {
      match.emplace_back();
    } else {
      match.push_back(
          Range{static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)});
    }
  }
  return match;
}

bool RegularExpression::matches(std::string_view text) const {
  Text input(text);
  return compiled_->find(input) != nullptr;
}

}  // namespace foundation
