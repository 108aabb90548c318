#include <thread>

#include <gtest/gtest.h>

#include "ZCommons/IO/ZCIOStream.h"

namespace {

/// Answers every read and write with one count.
struct FixedDelegate : ZCIOStreamDelegate {
  std::int64_t read(std::uint8_t*, std::size_t, ZCIOStream&) override { return count; }
  std::int64_t write(const std::uint8_t*, std::size_t, ZCIOStream&) override { return count; }
  double readTimeout() const override { return timeout; }
  void setReadTimeout(double seconds) override { timeout = seconds; }

  std::int64_t count = 1;
  double timeout = 5;
};

std::uint8_t bytes[10] = {};

}  // namespace

TEST(ZCIOStream, FailsWithoutBufferOrDelegate) {
  const auto delegate = std::make_shared<FixedDelegate>();
  const auto silent = std::make_shared<ZCIOStreamDelegate>();
  ZCIOStream abandoned(std::make_shared<FixedDelegate>());
  ZCIOStream notOffered(silent);
  ZCIOStream whole(delegate);
  for (ZCIOStream* stream : {&abandoned, &notOffered, &whole}) {
    const bool works = stream == &whole;
    EXPECT_EQ(stream->read(nullptr, 0), 0);
    EXPECT_EQ(stream->write(nullptr, 0), 0);
    EXPECT_EQ(stream->read(nullptr, 5), ZCIO_ERROR);
    EXPECT_EQ(stream->write(nullptr, 5), ZCIO_ERROR);
    EXPECT_EQ(stream->read(bytes, 5), works ? 1 : ZCIO_ERROR);
    EXPECT_EQ(stream->write(bytes, 5), works ? 1 : ZCIO_ERROR);
    stream->setReadTimeout(2.5);
    EXPECT_EQ(stream->readTimeout(), works ? 2.5 : ZCIO_NO_TIMEOUT);
    EXPECT_EQ(stream->writeTimeout(), ZCIO_NO_TIMEOUT);
  }
}

TEST(ZCIOStream, CountsWhatPasses) {
  const auto delegate = std::make_shared<FixedDelegate>();
  ZCIOStream stream(delegate);
  for (const std::int64_t count : {10, 0, -1, -7, 3}) {
    delegate->count = count;
    EXPECT_EQ(stream.read(bytes, sizeof bytes), count);
    EXPECT_EQ(stream.write(bytes, sizeof bytes), count);
  }
  EXPECT_EQ(stream.bytesRead(), 13u);
  EXPECT_EQ(stream.counterWrittenBytes(), 13u);
}

TEST(ZCIOStream, LetsAMeterClearTheCounterMeanwhile) {
  const auto delegate = std::make_shared<FixedDelegate>();
  ZCIOStream stream(delegate);
  std::thread writer([&] {
    for (int i = 0; i < 1000; ++i) stream.write(bytes, 1);
  });
  while (stream.counterWrittenBytes() == 0) std::this_thread::yield();
  stream.clearCounterWrittenBytes();
  writer.join();
  EXPECT_LT(stream.counterWrittenBytes(), 1000u);
  EXPECT_EQ(stream.bytesWritten(), 1000u);
}
