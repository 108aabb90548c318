#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZCommons/IO/ZCIOUtils.h"
#include "foundation/NSException.h"

using foundation::StringEncoding;

namespace {

/// Gives out a text, then one count for ever.
struct TextDelegate : ZCIOStreamDelegate {
  explicit TextDelegate(std::string content, std::int64_t last = 0)
      : text(std::move(content)), end(last) {}
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) override {
    const std::size_t count = text.copy(reinterpret_cast<char*>(buffer), maxLength, position);
    position += count;
    return count > 0 ? static_cast<std::int64_t>(count) : end;
  }

  std::string text;
  std::int64_t end;
  std::size_t position = 0;
};

using Lines = std::vector<std::string>;

Lines linesOf(std::string_view text, StringEncoding encoding) {
  const auto delegate = std::make_shared<TextDelegate>(std::string(text));
  ZCIOStream stream(delegate);
  Lines lines;
  while (auto line = ZCIOUtils::readLine(stream, encoding)) lines.push_back(*line);
  return lines;
}

}  // namespace

TEST(ZCIOUtils, ReadsLines) {
  struct Row {
    std::string text;
    StringEncoding encoding;
    Lines lines;
  };
  const std::string longLine(100000, 'x');
  const Row rows[] = {
      {"", StringEncoding::UTF8, {}},
      {"a b \r\nc\t\r\n", StringEncoding::UTF8, {"a b ", "c\t"}},
      {"\r\nabc", StringEncoding::UTF8, {"", "abc"}},
      {"\r\ra\rb\r\n\n", StringEncoding::UTF8, {"a\rb", ""}},
      {"\u0085\u2028\u00E4 \u2029\n", StringEncoding::UTF8, {"\u00E4 "}},
      {"\xE4\x85\n\u00E4\n", StringEncoding::UTF8, {"\u00E4", "\u00E4"}},
      {"\xE4\x85\n", StringEncoding::ISOLatin1, {"\u00E4"}},
      {std::string("a\0b\n", 4), StringEncoding::ASCII, {std::string("a\0b", 3)}},
      {longLine + "\n" + longLine, StringEncoding::UTF8, {longLine, longLine}},
  };
  for (const Row& row : rows) EXPECT_EQ(linesOf(row.text, row.encoding), row.lines) << row.text;
}

TEST(ZCIOUtils, StopsRightBehindTheLineFeed) {
  const auto delegate = std::make_shared<TextDelegate>("ab\ncd");
  ZCIOStream stream(delegate);
  EXPECT_EQ(foundation::textOf(ZCIOUtils::readLineBytes(stream).value()), "ab\n");
  EXPECT_EQ(delegate->position, 3u);
}

TEST(ZCIOUtils, LosesALineThatFailsButNotOneThatEnds) {
  for (const std::int64_t last : {0, -1, -2}) {
    const auto delegate = std::make_shared<TextDelegate>("abc", last);
    ZCIOStream stream(delegate);
    const auto line = ZCIOUtils::readLine(stream);
    EXPECT_EQ(line, last == ZCIO_ERROR ? std::nullopt : std::optional<std::string>("abc")) << last;
    EXPECT_FALSE(ZCIOUtils::readLine(stream)) << last;
  }
}

TEST(ZCIOUtils, RaisesWhenTheLineBufferCannotBeHad) {
  EXPECT_EQ(ZCIOUtils::lineBufferSize(), 128);
  ZCIOStream stream;
  ZCIOUtils::setLineBufferSize(-1);
  EXPECT_THROW(ZCIOUtils::readLineBytes(stream), foundation::NSMallocException);
  ZCIOUtils::setLineBufferSize(1);
  EXPECT_EQ(linesOf("abc\nd", StringEncoding::UTF8), (Lines{"abc", "d"}));
  ZCIOUtils::setLineBufferSize(128);
}
