#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ZDomain/vendors/fmdb/FMStatementRecogniser.h"
#include "foundation/CharacterSet.h"

/// Recognises the first of some keywords that stands at a place, whatever its case.
///
/// A keyword is compared with as many UTF-16 units of the text as it has itself; characters are
/// the same when they are after case folding (Unicode, section 3.13), so "K" is also the Kelvin
/// sign. It does not count when the UTF-16 unit right behind it is one of the invalid following
/// characters. An empty keyword stands everywhere before the end.
///
///     const auto end = FMStatementKeywordRecogniser::recogniserForKeyword(";");
class FMStatementKeywordRecogniser final : public FMStatementRecogniser {
 public:
  /// A recogniser that recognises nothing, to be filled from an archive.
  FMStatementKeywordRecogniser() = default;

  /// initWithKeyword:
  explicit FMStatementKeywordRecogniser(std::string keyword);

  /// initWithKeywords:
  ///
  /// The keywords are tried in their order.
  explicit FMStatementKeywordRecogniser(std::vector<std::string> keywords);

  /// initWithKeyword:invalidFollowingCharacters:
  FMStatementKeywordRecogniser(std::string keyword,
                               std::optional<foundation::CharacterSet> invalidFollowingCharacters);

  /// initWithKeywords:invalidFollowingCharacters:
  ///
  /// The keywords are tried in their order. No set means that any character may follow.
  FMStatementKeywordRecogniser(std::vector<std::string> keywords,
                               std::optional<foundation::CharacterSet> invalidFollowingCharacters);

  /// recogniserForKeyword:
  static std::shared_ptr<FMStatementKeywordRecogniser> recogniserForKeyword(std::string keyword);

  /// recogniserForKeywords:
  static std::shared_ptr<FMStatementKeywordRecogniser> recogniserForKeywords(
      std::vector<std::string> keywords);

  /// recogniserForKeyword:invalidFollowingCharacters:
  static std::shared_ptr<FMStatementKeywordRecogniser> recogniserForKeyword(
      std::string keyword, std::optional<foundation::CharacterSet> invalidFollowingCharacters);

  /// recogniserForKeywords:invalidFollowingCharacters:
  static std::shared_ptr<FMStatementKeywordRecogniser> recogniserForKeywords(
      std::vector<std::string> keywords,
      std::optional<foundation::CharacterSet> invalidFollowingCharacters);

  const std::vector<std::string>& keywords() const { return keywords_; }
  const std::optional<foundation::CharacterSet>& invalidFollowingCharacters() const {
    return invalidFollowingCharacters_;
  }

  Range recogniseRangeWithScanner(const FMStatementScanner& scanner,
                                  std::size_t& currentTokenPosition) const override;

  /// initWithCoder:
  ///
  /// No keywords when they are missing. False when they are no texts, or when the set of characters
  /// is not the pattern of one.
  bool initWithCoder(foundation::ArchiveReader& coder) override;

  /// encodeWithCoder:
  ///
  /// The set of characters is written as its pattern.
  void encodeWithCoder(foundation::ArchiveWriter& coder) const override;

  ARCHIVABLE_CLASS(FMStatementKeywordRecogniser, foundation::Archivable);

 private:
  bool mayStandBefore(std::string_view rest) const;

  std::vector<std::string> keywords_;
  std::optional<foundation::CharacterSet> invalidFollowingCharacters_;
};
