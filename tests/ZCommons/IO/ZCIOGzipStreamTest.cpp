#include <gtest/gtest.h>
#include <malloc.h>

#include "ScriptedDelegate.h"
#include "ZCommons/IO/NSDataUtils.h"
#include "ZCommons/IO/ZCIOGzipStream.h"

using foundation::Data;
using foundation::textOf;
using support::ScriptedDelegate;

// Reads of any length of bodies damaged anywhere are held against a plain model by the fuzz target.
TEST(ZCIOGzipStream, EndsQuietlyAndCountsNoLeftovers) {
  const Data gzip = *NSDataUtils::compressGzip(Data(20000, 'x'));
  Data damaged = gzip, buffer(15000);
  damaged[gzip.size() - 8] ^= 1;
  const std::string_view whole = textOf(gzip), cut = whole.substr(0, gzip.size() - 1);
  using Row = std::tuple<std::string_view, std::int64_t, std::uint64_t>;
  // A step of 16 KiB that ends in damage is lost.
  for (const auto& [body, rest, bytesRead] :
       {Row{whole, 5000, 15000}, Row{cut, 5000, 20000}, Row{textOf(damaged), 1384, 15000}}) {
    const auto source = std::make_shared<ScriptedDelegate>(body);
    ZCIOGzipStream stream(source);
    for (const std::int64_t count : {std::int64_t{15000}, rest, std::int64_t{0}}) {
      EXPECT_EQ(stream.read(buffer.data(), buffer.size()), count);
    }
    EXPECT_EQ(stream.bytesRead(), bytesRead);
    EXPECT_THROW(stream.bytesWritten(), ZCIOStreamErrorException);
  }
}

TEST(ZCIOGzipStream, LosesNothingToAnException) {
  const Data gzip = *NSDataUtils::compressGzip(Data(1000, 'x'));
  const auto source = std::make_shared<ScriptedDelegate>(textOf(gzip).substr(0, 20));
  ZCIOGzipStream stream(source);
  source->raises = true;
  EXPECT_THROW(support::readsOf(stream, 2000), foundation::NSGenericException);
  source->text = textOf(gzip).substr(20);
  EXPECT_EQ(support::readsOf(stream, 1000), std::string(1000, 'x') + "|0");
}

TEST(ZCIOGzipStream, KeepsLittleOfABomb) {
  const Data bomb = *NSDataUtils::compressGzip(Data(20 << 20, 0));
  const auto source = std::make_shared<ScriptedDelegate>(textOf(bomb));
  ZCIOGzipStream stream(source);
  const auto used = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
  const std::size_t before = used();
  std::uint8_t buffer[1000];
  while (stream.read(buffer, sizeof buffer) > 0) ASSERT_LT(used(), before + 100000);
}
