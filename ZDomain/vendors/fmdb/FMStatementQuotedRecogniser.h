#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ZDomain/vendors/fmdb/FMStatementRecogniser.h"
#include "foundation/NullableText.h"

/// Recognises a part of a text that stands between a start and an end quote, in which an escape
/// sequence takes the next character's meaning away. A quote without its end is no token.
///
/// An empty quote is never found. To be set up by one thread; recognising changes nothing.
///
///     const auto quotes = FMStatementQuotedRecogniser::quotedRecogniserWithStartQuote(
///         "'", "'", "\\", "SingleQuote");
///     std::size_t position = 7;
///     const auto range = quotes->recogniseRangeWithScanner(FMStatementScanner(sql), position);
class FMStatementQuotedRecogniser final : public FMStatementRecogniser {
 public:
  /// Given the scanned text and the place of the character behind an escape sequence: the text
  /// that stands in its place, or nothing to keep the character.
  using EscapeReplacer =
      std::function<std::optional<std::string>(std::string_view text, std::size_t position)>;

  /// A `maximumLength` without effect.
  static constexpr std::uint64_t noLimit = notFound;

  /// A recogniser that recognises nothing, to be filled from an archive.
  FMStatementQuotedRecogniser() = default;

  /// initWithStartQuote:endQuote:escapeSequence:maximumLength:name:
  ///
  /// `maximumLength` is that of what stands between the quotes, in UTF-16 units: the end quote has
  /// to end within the lengths of both quotes and that. A null `escapeSequence` means none.
  FMStatementQuotedRecogniser(std::string startQuote, std::string endQuote,
                              foundation::NullableText escapeSequence, std::uint64_t maximumLength,
                              std::string name);

  /// quotedRecogniserWithStartQuote:endQuote:name:
  ///
  /// Without an escape sequence and without a limit.
  static std::shared_ptr<FMStatementQuotedRecogniser> quotedRecogniserWithStartQuote(
      std::string startQuote, std::string endQuote, std::string name);

  /// quotedRecogniserWithStartQuote:endQuote:escapeSequence:name:
  ///
  /// Without a limit.
  static std::shared_ptr<FMStatementQuotedRecogniser> quotedRecogniserWithStartQuote(
      std::string startQuote, std::string endQuote, foundation::NullableText escapeSequence,
      std::string name);

  /// quotedRecogniserWithStartQuote:endQuote:escapeSequence:maximumLength:name:
  static std::shared_ptr<FMStatementQuotedRecogniser> quotedRecogniserWithStartQuote(
      std::string startQuote, std::string endQuote, foundation::NullableText escapeSequence,
      std::uint64_t maximumLength, std::string name);

  /// minWithLeftParam:rightParam:
  ///
  /// The smaller of the two.
  static std::uint64_t minWithLeftParam(std::uint64_t leftParam, std::uint64_t rightParam);

  const std::string& startQuote() const { return startQuote_; }
  const std::string& endQuote() const { return endQuote_; }
  const std::optional<std::string>& escapeSequence() const { return escapeSequence_; }
  std::uint64_t maximumLength() const { return maximumLength_; }
  const std::string& name() const { return name_; }

  /// Null unless it was set. Not archived.
  const EscapeReplacer& escapeReplacer() const { return escapeReplacer_; }
  void setEscapeReplacer(EscapeReplacer replacer) { escapeReplacer_ = std::move(replacer); }

  /// Whether unescaped content keeps the escape sequences themselves; false unless it was set. Not
  /// archived.
  bool shouldQuoteEscapeSequence() const { return shouldQuoteEscapeSequence_; }
  void setShouldQuoteEscapeSequence(bool should) { shouldQuoteEscapeSequence_ = should; }

  Range recogniseRangeWithScanner(const FMStatementScanner& scanner,
                                  std::size_t& currentTokenPosition) const override {
    return recognise(scanner.string(), currentTokenPosition, nullptr);
  }

  /// As above; `unescapedContent` becomes what stands between the quotes, each escaped character
  /// replaced as the escape replacer says. It is undefined when nothing was recognised.
  Range recogniseRangeWithScanner(const FMStatementScanner& scanner,
                                  std::size_t& currentTokenPosition,
                                  std::string& unescapedContent) const {
    unescapedContent.clear();
    return recognise(scanner.string(), currentTokenPosition, &unescapedContent);
  }

  /// initWithCoder:
  ///
  /// A missing text is empty. Logs to the console and takes no limit when the limit does not fit
  /// a word. False when something else than a text or a number stands where one is due.
  bool initWithCoder(foundation::ArchiveReader& coder) override;

  /// encodeWithCoder:
  ///
  /// Logs a warning to the console when there is an escape replacer.
  void encodeWithCoder(foundation::ArchiveWriter& coder) const override;

  ARCHIVABLE_CLASS(FMStatementQuotedRecogniser, foundation::Archivable);

 private:
  Range recognise(std::string_view text, std::size_t& position, std::string* content) const;
  std::string_view searchedPart(std::string_view text, std::size_t position) const;
  std::size_t escapeBefore(std::string_view text, std::size_t from, std::size_t end) const;
  void appendEscaped(std::string& content, std::string_view text, std::size_t position,
                     std::size_t length) const;

  std::string startQuote_;
  std::string endQuote_;
  std::optional<std::string> escapeSequence_;
  EscapeReplacer escapeReplacer_;
  std::uint64_t maximumLength_ = noLimit;
  std::string name_;
  bool shouldQuoteEscapeSequence_ = false;
};
