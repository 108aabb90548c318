#include <vector>

#include <gtest/gtest.h>

#include "ZCommons/IO/ZCIOUtils.h"
#include "foundation/NSException.h"

using foundation::StringEncoding;
using Lines = std::vector<std::string>;

namespace {

/// Gives out a text, then one count for ever.
struct TextDelegate : ZCIOStreamDelegate {
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) override {
    const std::size_t count = text.copy(reinterpret_cast<char*>(buffer), maxLength);
    text.remove_prefix(count);
    return count > 0 ? static_cast<std::int64_t>(count) : end;
  }

  std::string_view text;
  std::int64_t end = 0;
};

Lines linesOf(std::string_view text, StringEncoding encoding, std::int64_t end) {
  const auto delegate = std::make_shared<TextDelegate>();
  delegate->text = text;
  delegate->end = end;
  ZCIOStream stream(delegate);
  Lines lines;
  while (auto line = ZCIOUtils::readLine(stream, encoding)) lines.push_back(*line);
  return lines;
}

}  // namespace

TEST(ZCIOUtils, ReadsLines) {
  struct Row {
    std::string text;
    Lines lines;
    StringEncoding encoding = StringEncoding::UTF8;
    std::int64_t end = 0;
  };
  const std::string longLine(100000, 'x');
  const Row rows[] = {
      {"a b \r\nc\t\r\n", {"a b ", "c\t"}},
      {"\r\ra\rb\r\n\n", {"a\rb", ""}},
      {"\u0085\u2028\u00E4 \u2029\n", {"\u00E4 "}},
      {"\xE4\x85\n\u00E4\n", {"\u00E4", "\u00E4"}},
      {"\xE4\x85\n", {"\u00E4"}, StringEncoding::ISOLatin1},
      {std::string("a\0b\n", 4), {std::string("a\0b", 3)}, StringEncoding::ASCII},
      {longLine + "\n" + longLine, {longLine, longLine}},
      {"line\nend", {"line", "end"}, StringEncoding::UTF8, -2},
      {"line\nlost", {"line"}, StringEncoding::UTF8, ZCIO_ERROR},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(linesOf(row.text, row.encoding, row.end), row.lines) << row.text;
  }
}

TEST(ZCIOUtils, RaisesWhenTheLineBufferCannotBeHad) {
  ZCIOStream stream;
  EXPECT_EQ(ZCIOUtils::lineBufferSize(), 128);
  ZCIOUtils::setLineBufferSize(-1);
  EXPECT_THROW(ZCIOUtils::readLineBytes(stream), foundation::NSMallocException);
  ZCIOUtils::setLineBufferSize(128);
}
