#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Error.h"

namespace foundation {

/// A compiled regular expression in ICU's language, over UTF-8 text.
///
/// Positions and lengths are bytes. Bytes that are not UTF-8 stand for U+FFFD. "." matches no line
/// end (LF, CR, VT, FF, NEL, U+2028, U+2029), and "$" also matches before one at the very end.
/// A copy shares the compiled form. Thread safety: any number of threads may match at once.
class RegularExpression {
 public:
  /// Flags of a mask, with the platform's values.
  enum Options : unsigned {
    none = 0,
    caseInsensitive = 1,
    allowCommentsAndWhitespace = 2,
    ignoreMetacharacters = 4,
    dotMatchesLineSeparators = 8,
    anchorsMatchLines = 16,
    useUnixLineSeparators = 32,
    useUnicodeWordBoundaries = 64,
  };

  struct Range {
    std::size_t location;
    std::size_t length;
    friend bool operator==(const Range&, const Range&) = default;
  };

  /// One match: the range of the whole in front, then one for each group, nothing for a group that
  /// took no part.
  using Match = std::vector<std::optional<Range>>;

  /// Compiles `pattern`. The error tells the engine's reason and the place in the pattern.
  static Result<RegularExpression> regularExpressionWithPattern(std::string_view pattern,
                                                                unsigned options = none);

  /// `text` with a backslash before every character that has a meaning in a pattern.
  static std::string escapedPatternForString(std::string_view text);

  const std::string& pattern() const;
  unsigned options() const;

  /// The first match in `text`, or nothing. A match that would need more than the engine's stack
  /// or time limit counts as none.
  std::optional<Match> firstMatchInString(std::string_view text) const;

  /// Whether some part of `text` matches.
  bool matches(std::string_view text) const;

 private:
  struct Compiled;
  explicit RegularExpression(std::shared_ptr<const Compiled> compiled);

  std::shared_ptr<const Compiled> compiled_;
};

}  // namespace foundation
