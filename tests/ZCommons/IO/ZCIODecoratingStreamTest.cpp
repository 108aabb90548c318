#include <gtest/gtest.h>

#include "ScriptedDelegate.h"
#include "ZCommons/IO/ZCIOFixedLengthStream.h"
#include "ZCommons/IO/ZCIOPeekingStream.h"
#include "ZCommons/IO/ZCIORecordingStream.h"

using support::ScriptedDelegate;

TEST(ZCIOFixedLengthStream, EndsBehindItsLength) {
  const auto delegate = std::make_shared<ScriptedDelegate>("0123456789");
  ZCIOFixedLengthStream five(std::make_shared<ZCIOStream>(delegate), 5), unlimited(delegate);
  EXPECT_EQ(support::readsOf(five, 3), "012|34|0");
  EXPECT_EQ(five.bytesRead(), 5u);
  EXPECT_EQ(support::writeText(five, "longer than five"), 16);
  EXPECT_EQ(five.bytesWritten(), 16u);
  EXPECT_EQ(support::readsOf(unlimited, 8), "56789|0");
}

TEST(ZCIOPeekingStream, ReadsWhatWasPeeked) {
  const auto delegate = std::make_shared<ScriptedDelegate>("123456", ZCIO_ERROR);
  ZCIOPeekingStream stream(delegate);
  std::uint8_t buffer[10];
  EXPECT_EQ(stream.peek(buffer, 2), 2);
  EXPECT_EQ(stream.peek(buffer, 2), 2);
  EXPECT_EQ(foundation::textOf({buffer, 2}), "34");
  EXPECT_EQ(stream.bytesRead(), 0u);
  EXPECT_EQ(stream.read(buffer, 3), 3);
  EXPECT_EQ(stream.bytesRead(), 3u);
  EXPECT_EQ(support::readsOf(stream, 10), "456|-1");
  stream.storePeekingBytes(foundation::dataOf("back"));
  EXPECT_EQ(support::readsOf(stream, 3), "bac|k|-1");
}

TEST(ZCIORecordingStream, KeepsWhatPassesWhileSwitchedOn) {
  const auto delegate = std::make_shared<ScriptedDelegate>("abcdef");
  ZCIORecordingStream stream(std::make_shared<ZCIOStream>());
  stream.setDelegate(delegate);
  delegate->room = delegate->cut = 3;
  for (const bool reading : {true, false}) {
    stream.setReadRecordingEnabled(reading);
    stream.setWriteRecordingEnabled(!reading);
    std::uint8_t buffer[6];
    stream.read(buffer, 6);
    support::writeText(stream, "12345");
    EXPECT_EQ(foundation::textOf(stream.resetReadRecordedBuffer()), reading ? "abc" : "");
    EXPECT_EQ(foundation::textOf(stream.resetWriteRecordedBuffer()), reading ? "" : "123");
  }
  EXPECT_EQ(stream.bytesRead() + stream.bytesWritten(), 12u);
}
