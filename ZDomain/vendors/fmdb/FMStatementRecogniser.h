#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundation/archive/Archivable.h"

/// The whole text that recognisers look at: a view, which the text has to outlive.
class FMStatementScanner {
 public:
  explicit FMStatementScanner(std::string_view string) : string_(string) {}

  std::string_view string() const { return string_; }

 private:
  std::string_view string_;
};

/// A kind of token that a statement splitter knows: says whether one stands at a place of a text.
///
/// Positions and lengths of UTF-8 texts are bytes. Only what limits a search or a comparison
/// counts characters as the platform does, in UTF-16 units, so that texts are cut where it would
/// cut them. Thread safety: any number of threads may recognise at once.
class FMStatementRecogniser : public foundation::Archivable {
 public:
  /// What stands for no position: the largest signed word.
  static constexpr std::size_t notFound = PTRDIFF_MAX;

  struct Range {
    std::size_t location = notFound;
    std::size_t length = 0;
    friend bool operator==(const Range&, const Range&) = default;
  };

  /// recogniseRangeWithScanner:currentTokenPosition:
  ///
  /// The token that begins exactly at `currentTokenPosition`, which then moves behind it. Without
  /// one the location is `notFound`, and the position stays. Nothing stands beyond the end.
  virtual Range recogniseRangeWithScanner(const FMStatementScanner& scanner,
                                          std::size_t& currentTokenPosition) const = 0;

 protected:
  /// The longest beginning of `text` that has at most `units` UTF-16 units.
  static std::string_view prefix(std::string_view text, std::size_t units);
};
