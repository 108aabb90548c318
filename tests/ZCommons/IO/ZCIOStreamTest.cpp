#include <thread>

#include <gtest/gtest.h>

#include "ScriptedDelegate.h"

using support::ScriptedDelegate;

TEST(ZCIOStream, FailsWithoutBufferOrDelegate) {
  const auto delegate = std::make_shared<ScriptedDelegate>("abc");
  const auto silent = std::make_shared<ZCIOStreamDelegate>();
  ZCIOStream abandoned(std::make_shared<ScriptedDelegate>()), notOffered(silent), whole(delegate);
  for (ZCIOStream* stream : {&abandoned, &notOffered, &whole}) {
    std::uint8_t byte, *const buffer = stream == &whole ? nullptr : &byte;
    EXPECT_EQ(stream->read(nullptr, 0), 0);
    EXPECT_EQ(stream->write(nullptr, 0), 0);
    EXPECT_EQ(stream->read(buffer, 1), ZCIO_ERROR);
    EXPECT_EQ(stream->write(buffer, 1), ZCIO_ERROR);
    EXPECT_EQ(stream->writeTimeout(), ZCIO_NO_TIMEOUT);
  }
}

TEST(ZCIOStream, CountsWhatPassesWhileAMeterClearsTheCounter) {
  const auto delegate = std::make_shared<ScriptedDelegate>("abc", -7);
  ZCIOStream stream(delegate);
  EXPECT_EQ(support::readsOf(stream, 2), "ab|c|-7");
  EXPECT_EQ(stream.bytesRead(), 3u);
  support::writeText(stream, "0123456789");
  std::thread writer([&] {
    for (int i = 0; i < 1000; ++i) support::writeText(stream, "x");
  });
  stream.clearCounterWrittenBytes();
  writer.join();
  EXPECT_LE(stream.counterWrittenBytes(), 1000u);
  EXPECT_EQ(stream.bytesWritten(), 1010u);
}
