#include <array>
#include <thread>

#include <gtest/gtest.h>

#include "ZCommons/IO/ZCIOStream.h"

namespace {

/// Answers every read and write with one count.
struct FixedDelegate : ZCIOStreamDelegate {
  std::int64_t read(std::uint8_t*, std::size_t, ZCIOStream& stream) override {
    caller = &stream;
    return count;
  }
  std::int64_t write(const std::uint8_t*, std::size_t, ZCIOStream&) override { return count; }
  double readTimeout() const override { return timeout; }
  void setReadTimeout(double seconds) override { timeout = seconds; }

  std::int64_t count = 0;
  double timeout = 5;
  ZCIOStream* caller = nullptr;
};

std::array<std::uint8_t, 10> bytes{};

}  // namespace

TEST(ZCIOStream, FailsWithoutBufferOrDelegate) {
  auto delegate = std::make_shared<FixedDelegate>();
  delegate->count = 1;
  const auto silent = std::make_shared<ZCIOStreamDelegate>();
  ZCIOStream none;
  ZCIOStream notOffered(silent);
  ZCIOStream whole(delegate);
  for (ZCIOStream* stream : {&none, &notOffered, &whole}) {
    EXPECT_EQ(stream->read(nullptr, 0), 0);
    EXPECT_EQ(stream->write(nullptr, 0), 0);
    EXPECT_EQ(stream->read(nullptr, 5), ZCIO_ERROR);
    EXPECT_EQ(stream->write(nullptr, 5), ZCIO_ERROR);
    const bool works = stream == &whole;
    EXPECT_EQ(stream->read(bytes.data(), 5), works ? 1 : ZCIO_ERROR);
    EXPECT_EQ(stream->write(bytes.data(), 5), works ? 1 : ZCIO_ERROR);
    EXPECT_EQ(stream->bytesRead(), works ? 1u : 0u);
    EXPECT_EQ(stream->writeTimeout(), -1.0);
  }
  EXPECT_EQ(delegate->caller, &whole);
  delegate.reset();
  EXPECT_EQ(whole.delegate(), nullptr);
  EXPECT_EQ(whole.read(bytes.data(), 5), ZCIO_ERROR);
}

TEST(ZCIOStream, CountsWhatPasses) {
  const auto delegate = std::make_shared<FixedDelegate>();
  ZCIOStream stream;
  stream.setDelegate(delegate);
  for (const std::int64_t count : {10, 0, -1, -7, 3}) {
    delegate->count = count;
    EXPECT_EQ(stream.read(bytes.data(), bytes.size()), count);
    EXPECT_EQ(stream.write(bytes.data(), bytes.size()), count);
  }
  EXPECT_EQ(stream.bytesRead(), 13u);
  EXPECT_EQ(stream.counterWrittenBytes(), 13u);
  stream.clearCounterWrittenBytes();
  EXPECT_EQ(stream.counterWrittenBytes(), 0u);
  EXPECT_EQ(stream.bytesWritten(), 13u);
}

TEST(ZCIOStream, HandsTimeoutsOn) {
  const auto delegate = std::make_shared<FixedDelegate>();
  ZCIOStream stream(delegate);
  EXPECT_EQ(stream.readTimeout(), 5);
  stream.setReadTimeout(2.5);
  stream.setWriteTimeout(2.5);
  EXPECT_EQ(delegate->timeout, 2.5);
  EXPECT_EQ(stream.writeTimeout(), -1.0);
}

TEST(ZCIOStream, LetsAMeterReadTheCounterMeanwhile) {
  const auto delegate = std::make_shared<FixedDelegate>();
  delegate->count = 1;
  ZCIOStream stream(delegate);
  std::thread writer([&] {
    for (int i = 0; i < 1000; ++i) stream.write(bytes.data(), 1);
  });
  while (stream.counterWrittenBytes() == 0) std::this_thread::yield();
  stream.clearCounterWrittenBytes();
  writer.join();
  EXPECT_LT(stream.counterWrittenBytes(), 1000u);
  EXPECT_EQ(stream.bytesWritten(), 1000u);
}
