#include <gtest/gtest.h>

#include "ScriptedDelegate.h"
#include "ZCommons/IO/ZCIOChunkedStream.h"
#include "tests/support/RecordingLogger.h"

using support::ScriptedDelegate;

TEST(ZCIOChunkedStream, TakesTheFramingOffHoweverTheBytesCome) {
  struct Row {
    std::string_view body;
    std::size_t length;
    std::string reads, left = "";
  };
  const Row rows[] = {
      {"4\r\nWiki\r\n5\r\npedia\r\n0\r\n\r\nnext", 100, "Wikipedia|0", "next"},
      {"4\r\nWiki\r\n5\r\npedia\r\n0\r\n\r\nnext", 3, "Wik|ipe|dia|0", "next"},
      {"\xA0\t0XA\xE4\n0123456789\n0\n\n", 99, "0123456789|0"},
      {"1FFFFFFFF\r\nab", 1, "a|b|-1"},
      {"2\r\nab\r\n-1\r\nline\r\nnext", 9, "ab|0", "next"},
      {"\r\n\r\n2\r\nab", 9, "0", "2\r\nab"},
      {"0\r\nA: b\r\nC: d\r\n\r\n", 9, "0", "C: d\r\n\r\n"},
  };
  for (const Row& row : rows) {
    for (const std::size_t cut : {std::size_t{1}, std::size_t{3}, SIZE_MAX}) {
      const auto delegate = std::make_shared<ScriptedDelegate>(row.body);
      delegate->cut = cut;
      ZCIOChunkedStream stream(delegate);
      EXPECT_EQ(support::readsOf(stream, row.length), row.reads) << row.body;
      EXPECT_EQ(delegate->text, row.left) << row.body;
    }
  }
  EXPECT_EQ(ZCIOChunkedStream::getChunkLength("\u2003\u00851FFFFFFFF"), 0xFFFFFFFF);
}

TEST(ZCIOChunkedStream, FramesWrites) {
  const auto delegate = std::make_shared<ScriptedDelegate>();
  {
    ZCIOChunkedStream stream(delegate);
    EXPECT_EQ(support::writeText(stream, "0123456789"), 15);
    EXPECT_EQ(stream.write(nullptr, 0), 5);
    EXPECT_EQ(stream.writeLastChunk(), 0);
    EXPECT_EQ(support::writeText(stream, "x"), 6);
  }
  ZCIOChunkedStream{delegate};
  EXPECT_EQ(delegate->written, "A\r\n0123456789\r\n0\r\n\r\n1\r\nx\r\n0\r\n\r\n");
  delegate->raises = true;
  ZCIOChunkedStream{delegate};
  ZCIOChunkedStream tried(delegate);
  EXPECT_THROW(tried.writeLastChunk(), foundation::NSGenericException);
  EXPECT_EQ(tried.writeLastChunk(), 0);
}

TEST(ZCIOChunkedStream, WarnsAndGoesOn) {
  const auto logger = support::RecordingLogger::add(DDLogLevel::warning);
  const auto delegate = std::make_shared<ScriptedDelegate>("1;\r\n", ZCIO_ERROR);
  ZCIOChunkedStream stream(delegate);
  EXPECT_EQ(support::readsOf(stream, 3), "-1");
  delegate->text = "x\r\n0\r\n";
  delegate->raises = true;
  EXPECT_EQ(support::readsOf(stream, 3), "x|0");
  delegate->raises = false;
  delegate->room = 5;
  EXPECT_EQ(support::writeText(stream, "x"), ZCIO_ERROR);
  const std::vector<std::string> lines = {
      "2 (ZCIOChunkedStream) ChunkedStream.ReadNextChunk, Error reading chunk",
      "2 (ZCIOChunkedStream) Output stream have no space available. Writen bytes - 5. "
      "[ZCIOChunkedStream write]"};
  EXPECT_EQ(logger->lines(), lines);
}
