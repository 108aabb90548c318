#include "ZDomain/vendors/fmdb/FMStatementAutomaton.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "ZDomain/vendors/fmdb/FMStatementKeywordRecogniser.h"
#include "ZDomain/vendors/fmdb/FMStatementQuotedRecogniser.h"
#include "foundation/Assertion.h"

namespace {

constexpr std::size_t blockSize = 64;

bool isLetter(unsigned char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }

}  // namespace

FMStatementAutomaton::FMStatementAutomaton(Recognisers recognisers) {
  for (const auto& recogniser : recognisers) {
    if (auto* quoted = dynamic_cast<const FMStatementQuotedRecogniser*>(recogniser.get())) {
      ZARVO_ASSERT(quoted->startQuote() == quoted->endQuote());
      ZARVO_ASSERT(quoted->maximumLength() == FMStatementQuotedRecogniser::noLimit);
      addQuotes(quoted->startQuote(), quoted->escapeSequence().value_or(quoted->startQuote()));
    } else {
      auto* keyword = dynamic_cast<const FMStatementKeywordRecogniser*>(recogniser.get());
      ZARVO_ASSERT(keyword && keyword->keywords().size() == 1);
      ZARVO_ASSERT(!keyword->invalidFollowingCharacters());
      const std::uint8_t mark = addMark(keyword->keywords().front());
      ZARVO_ASSERT(!isLetter(mark) && tokens_[mark] == Token::none);
      tokens_[mark] = Token::keyword;
    }
  }
}

std::uint8_t FMStatementAutomaton::addMark(const std::string& character) {
  ZARVO_ASSERT(character.size() == 1 && character[0] > 0);
  const auto mark = static_cast<std::uint8_t>(character[0]);
  const auto end = marks_.begin() + static_cast<std::ptrdiff_t>(markCount_);
  if (std::find(marks_.begin(), end, mark) == end) {
    ZARVO_ASSERT(markCount_ < maximumMarks);
    marks_[markCount_++] = mark;
  }
  return mark;
}

void FMStatementAutomaton::addQuotes(const std::string& quote, const std::string& escape) {
  const std::uint8_t mark = addMark(quote);
  ZARVO_ASSERT(tokens_[mark] == Token::none);
  tokens_[mark] = Token::quotedPart;
  escapes_[mark] = addMark(escape);
}

// Bit i tells whether byte i is a mark. The first loop runs on vectors: all bytes are compared with
// all marks, in any order.
std::uint64_t FMStatementAutomaton::marksInBlock(const std::uint8_t* block) const {
  const auto marks = marks_;
  std::uint8_t isMark[blockSize];
  for (std::size_t i = 0; i < blockSize; ++i) {
    isMark[i] = 0;
    for (const std::uint8_t mark : marks) isMark[i] |= block[i] == mark ? 1 : 0;
  }
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < blockSize; i += 8) {
    std::uint64_t eight;
    std::memcpy(&eight, isMark + i, sizeof eight);
    // Moves the eight bytes' lowest bits together into the highest byte.
    constexpr bool isLittle = std::endian::native == std::endian::little;
    constexpr std::uint64_t together = isLittle ? 0x0102040810204080 : 0x8040201008040201;
    bits |= (eight * together >> 56) << i;
  }
  return bits;
}

std::uint64_t FMStatementAutomaton::marksAt(std::string_view text, std::size_t base) const {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data()) + base;
  const std::size_t rest = text.size() - base;
  if (rest >= blockSize) return marksInBlock(bytes);
  std::uint8_t last[blockSize] = {};
  std::memcpy(last, bytes, rest);
  return marksInBlock(last) & ((std::uint64_t{1} << rest) - 1);
}

// Goes from `start`, which is outside of quotes, to the end of the text. Returns the place of the
// quote that is still open there.
std::optional<std::size_t> FMStatementAutomaton::walk(std::string_view text, const Tokens& tokens,
                                                      std::size_t start,
                                                      std::vector<std::size_t>& ends) const {
  std::uint8_t quote = 0;  // none is open
  std::uint8_t escape = 0;
  std::size_t opened = 0;
  std::size_t escaped = FMStatementRecogniser::notFound;
  for (std::size_t base = start & ~(blockSize - 1); base < text.size(); base += blockSize) {
    std::uint64_t marks = marksAt(text, base);
    if (base < start) marks &= ~std::uint64_t{0} << (start - base);
    for (; marks != 0; marks &= marks - 1) {
      const std::size_t place = base + static_cast<std::size_t>(std::countr_zero(marks));
      const auto mark = static_cast<std::uint8_t>(text[place]);
      if (quote == 0) {
        if (tokens[mark] == Token::quotedPart) {
          quote = mark;
          escape = escapes_[mark];
          opened = place;
        } else if (tokens[mark] == Token::keyword) {
          ends.push_back(place + 1);
        }
      } else if (place == escaped) {
        continue;
      } else if (mark == quote) {
        quote = 0;
      } else if (mark == escape) {
        escaped = place + 1;
      }
    }
  }
  return quote == 0 ? std::nullopt : std::optional(opened);
}

// A quote without its end stands for itself, and the walk goes on behind it. No later quote of its
// kind has an end either: each of them was passed over as an escaped character. So each kind of
// quote turns the walk back at most once.
std::vector<std::size_t> FMStatementAutomaton::statementEnds(std::string_view text) const {
  Tokens tokens = tokens_;
  std::vector<std::size_t> ends;
  std::size_t start = 0;
  while (const std::optional<std::size_t> opened = walk(text, tokens, start, ends)) {
    tokens[static_cast<std::uint8_t>(text[*opened])] = Token::none;
    start = *opened + 1;
  }
  return ends;
}
