#include <gmock/gmock.h>

#include "ZDomain/vendors/fmdb/FMStatementKeywordRecogniser.h"
#include "ZDomain/vendors/fmdb/FMStatementQuotedRecogniser.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"
#include "tests/support/RecordingConsole.h"

using foundation::CharacterSet;
using Quoted = FMStatementQuotedRecogniser;
using Keyword = FMStatementKeywordRecogniser;

namespace {

// The length of the token at the beginning, or -1.
template <class Recogniser>
int lengthOf(const Recogniser& recogniser, std::string_view text) {
  std::size_t end = 0;
  const auto range = recogniser.recogniseRangeWithScanner(FMStatementScanner(text), end);
  EXPECT_EQ(end, range.length);
  return range.location == FMStatementRecogniser::notFound ? -1 : static_cast<int>(end);
}

// The object that an archive of `object` holds once `from` was replaced in it; null when refused.
template <class T>
std::shared_ptr<T> rearchived(const std::shared_ptr<T>& object,
                              foundation::PropertyListFormat format, std::string_view from = "",
                              std::string_view to = "") {
  std::string archive(foundation::textOf(*foundation::ArchiveWriter::archivedData(object, format)));
  archive.replace(archive.find(from), from.size(), to);
  const auto copy =
      foundation::ArchiveReader::unarchivedObjectOfClass<T>(foundation::dataOf(archive));
  return copy ? *copy : nullptr;
}

}  // namespace

TEST(FMStatementQuotedRecogniser, FindsTheEndQuote) {
  constexpr auto noLimit = Quoted::noLimit;
  const std::tuple<Quoted, std::string, int> rows[] = {
      {{"'", "'", nullptr, noLimit, ""}, "'a\\'b'", 4},
      {{"'", "'", "\\", noLimit, ""}, "'a\\'b'", 6},
      {{"'", "'", "\\", noLimit, ""}, "'a\\'", -1},
      {{"/*", "*/", nullptr, noLimit, ""}, "/*/ */", 6},
      {{"(", ")", "^^", noLimit, ""}, "(^^))", 5},
      {{"'", "'", "'", noLimit, ""}, "'a''", 3},
      {{"'", "", nullptr, noLimit, ""}, "'a'", -1},
      // The limit is that of the content, in UTF-16 units.
      {{"'", "'", nullptr, 2, ""}, "'\U0001F600'", 6},
      {{"'", "'", nullptr, 1, ""}, "'\U0001F600'", -1},
      {{"'", "'", nullptr, ~std::uint64_t{0}, ""}, "'abc'", 5},
  };
  for (const auto& [quotes, text, length] : rows) EXPECT_EQ(lengthOf(quotes, text), length) << text;
}

TEST(FMStatementQuotedRecogniser, UnescapesTheContent) {
  Quoted quotes("'", "'", "\\", Quoted::noLimit, "");
  quotes.setEscapeReplacer([](std::string_view text, std::size_t position) {
    return text[position] == 'n' ? std::optional("\n") : std::nullopt;
  });
  quotes.setShouldQuoteEscapeSequence(true);
  std::size_t position = 0;
  std::string content = "old";
  quotes.recogniseRangeWithScanner(FMStatementScanner("'a\\n\\\u20ACb'"), position, content);
  EXPECT_EQ(content, "a\\\n\\\u20ACb");
}

TEST(FMStatementKeywordRecogniser, ComparesWithoutCase) {
  const CharacterSet letters = CharacterSet::charactersInString("abc\uD7FF");
  const std::tuple<Keyword, std::string, int> rows[] = {
      {Keyword("Select"), "sELECTx", 6},
      {Keyword("select"), "selec", -1},
      {Keyword("select", letters), "selecta", -1},
      {Keyword(std::vector<std::string>{"abc", "a"}), "abx", 1},
      {Keyword("\u00C4b"), "\u00E4Bc", 3},
      {Keyword("k"), "\u212A", 3},
      {Keyword("ss"), "\u00DF", -1},
      // What follows is looked at as a UTF-16 unit, here the first of two.
      {Keyword("a", letters.inverted()), "a\U0001D7FF", -1},
      {Keyword("a", CharacterSet::charactersInString("\U0001F600")), "a\U0001F600", 1},
  };
  for (const auto& [keyword, text, length] : rows) EXPECT_EQ(lengthOf(keyword, text), length);
}

TEST(FMStatementRecogniser, ComesBackFromAnArchive) {
  const support::RecordingConsole console;
  constexpr auto XML = foundation::PropertyListFormat::XML;
  const auto quotes = Quoted::quotedRecogniserWithStartQuote("<", ">", "\\", 4711, "\u20AC");
  const auto keyword = Keyword::recogniserForKeyword("go", CharacterSet::charactersInString("xy"));
  for (const auto format : {XML, foundation::PropertyListFormat::Binary}) {
    const auto copy = rearchived(quotes, format);
    EXPECT_EQ(copy->startQuote() + *copy->escapeSequence() + copy->endQuote() + copy->name(),
              "<\\>\u20AC");
    EXPECT_EQ(copy->maximumLength(), 4711u);
    const auto other = rearchived(keyword, format);
    EXPECT_EQ(other->keywords(), keyword->keywords());
    EXPECT_EQ(other->invalidFollowingCharacters(), keyword->invalidFollowingCharacters());
  }
  EXPECT_FALSE(rearchived(quotes, XML, "Q.es</key>", "-</key>")->escapeSequence());
  EXPECT_FALSE(rearchived(quotes, XML, "Q.m</key>", "Q.s</key>"));
  EXPECT_FALSE(rearchived(keyword, XML, "<string>[", "<string>"));
  quotes->setEscapeReplacer([](std::string_view, std::size_t) { return std::nullopt; });
  const auto unlimited = rearchived(quotes, XML, ">4711<", ">18446744073709551615<");
  EXPECT_EQ(unlimited->maximumLength(), Quoted::noLimit);
  EXPECT_THAT(console.lines(),
              testing::ElementsAre("Warning: encoding CPQuoteRecogniser with an escapeReplacer "
                                   "set.  This will not be recreated when decoded.",
                                   "Warning, value for maximum length too long for this platform, "
                                   "allowing infinite lengths"));
}
