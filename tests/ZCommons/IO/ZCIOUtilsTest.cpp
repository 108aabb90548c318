#include <gtest/gtest.h>

#include "ScriptedDelegate.h"
#include "ZCommons/IO/ZCIOUtils.h"

using foundation::StringEncoding;
using support::ScriptedDelegate;

TEST(ZCIOUtils, ReadsLines) {
  using Row = std::tuple<std::string, std::string, StringEncoding, std::int64_t>;
  const std::string longLine(100000, 'x');
  const Row rows[] = {
      {"a b \r\n\r\ra\rb\t\r\n\n", "a b |a\rb\t||", StringEncoding::UTF8, 0},
      {"\u0085\u2028\u00E4 \u2029\n\xE4\x85\n", "\u00E4 |\u00E4|", StringEncoding::UTF8, 0},
      {"\xE4\x85\n", "\u00E4|", StringEncoding::ISOLatin1, 0},
      {longLine + "\nend", longLine + "|end|", StringEncoding::ASCII, -2},
      {"line\nlost", "line|", StringEncoding::ASCII, ZCIO_ERROR},
  };
  for (const auto& [text, expected, encoding, end] : rows) {
    const auto delegate = std::make_shared<ScriptedDelegate>(text, end);
    ZCIOStream stream(delegate);
    std::string lines;
    while (auto line = ZCIOUtils::readLine(stream, encoding)) lines += *line + "|";
    EXPECT_EQ(lines, expected);
  }
}

// A length or a setting, however large, is asked for only when that much may come.
TEST(ZCIOUtils, AsksForNoMoreThanItNeeds) {
  using Row = std::tuple<std::int64_t, std::int64_t, std::int64_t, std::vector<std::size_t>>;
  for (const auto& [length, bufferSize, copied, requests] :
       {Row{100, 8192, 4, {100, 96}}, Row{3, 2, 3, {2, 1}}, Row{-1, 3, 0, {3, 3, 3}},
        Row{INT64_MAX, INT64_MAX, 4, {1 << 20, 1 << 20}}}) {
    ZCIOUtils::setBufferSize(bufferSize);
    const auto source = std::make_shared<ScriptedDelegate>("abcd");
    ZCIOStream stream(source);
    const auto bytes = ZCIOUtils::readToEnd(stream, length);
    EXPECT_EQ(source->requests, requests);
    source->text = "abcd";
    EXPECT_EQ(ZCIOUtils::copyFrom(stream, stream, length), copied);
    EXPECT_EQ(source->written, length == 3 ? "abc" : "abcd");
    EXPECT_EQ(source->written, foundation::textOf(*bytes));
    EXPECT_THROW(ZCIOUtils::read(stream, -1), foundation::NSMallocException);
  }
  const std::string large(5 << 20, 'x');
  const auto source = std::make_shared<ScriptedDelegate>(large, -7);
  ZCIOStream stream(source);
  EXPECT_EQ(foundation::textOf(ZCIOUtils::read(stream, INT64_MAX)), large);
}
