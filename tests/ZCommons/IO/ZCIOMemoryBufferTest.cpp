#include <random>

#include <gtest/gtest.h>

#include "ScriptedDelegate.h"
#include "ZCommons/IO/ZCIOMemoryBuffer.h"

// Writes and reads of any length, with looks at the bytes in between, beside a plain string.
TEST(ZCIOMemoryBuffer, IsAQueueOfBytes) {
  const auto buffer = std::make_shared<ZCIOMemoryBuffer>();
  ZCIOStream stream(buffer);
  std::mt19937 random(1);
  std::string expected;
  for (int step = 0; step < 3000; ++step) {
    const std::string piece(random() % (step % 100 == 0 ? 300000 : 3000), static_cast<char>(step));
    support::writeText(stream, piece);
    expected += piece;
    std::string read(random() % (step / 1000 == 1 ? 1000 : 12000) + 1, ' ');
    const auto count = stream.read(reinterpret_cast<std::uint8_t*>(read.data()), read.size());
    read.resize(static_cast<std::size_t>(count));
    ASSERT_EQ(read, expected.substr(0, read.size()));
    expected.erase(0, read.size());
    ASSERT_TRUE(step % 7 != 0 || foundation::textOf(buffer->data()) == expected);
  }
}
