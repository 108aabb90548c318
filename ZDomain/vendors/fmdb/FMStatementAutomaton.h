#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ZDomain/vendors/fmdb/FMStatementRecogniser.h"

/// The recognisers of a splitter, compiled: finds the ends of a batch's statements in one pass,
/// looking only at the characters that mean something to one of them.
///
/// Cuts a text where trying the recognisers one after the other at every place would. Takes those
/// that a splitter needs: quotes of one ASCII character, without a limit, that end as they start,
/// with an escape of one ASCII character or none; and keywords of one ASCII character that is no
/// letter, each of which ends a statement. Other recognisers, and two that begin alike, stop the
/// process with an assertion.
///
/// Time is linear in the length of the text, whatever it holds. Thread safety: any thread.
class FMStatementAutomaton {
 public:
  using Recognisers = std::span<const std::shared_ptr<const FMStatementRecogniser>>;

  explicit FMStatementAutomaton(Recognisers recognisers);

  /// The places right behind each keyword of `text` that stands outside of quotes, in order.
  std::vector<std::size_t> statementEnds(std::string_view text) const;

 private:
  static constexpr std::size_t maximumMarks = 5;

  /// What a byte outside of quotes begins.
  enum class Token : std::uint8_t { none, quotedPart, keyword };
  using Tokens = std::array<Token, 256>;

  std::uint8_t addMark(const std::string& character);
  void addQuotes(const std::string& quote, const std::string& escape);
  std::uint64_t marksInBlock(const std::uint8_t* block) const;
  std::uint64_t marksAt(std::string_view text, std::size_t base) const;
  std::optional<std::size_t> walk(std::string_view text, const Tokens& tokens, std::size_t start,
                                  std::vector<std::size_t>& ends) const;

  std::array<std::uint8_t, maximumMarks> marks_{};  // the bytes that mean something anywhere
  std::size_t markCount_ = 0;
  Tokens tokens_{};
  std::array<std::uint8_t, 256> escapes_{};  // by quote; a quote without an escape has itself
};
