#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "ZCommons/IO/ZCIODescriptorDelegate.h"
#include "ZCommons/IO/ZCIOUtils.h"

// While signals interrupt the process every few milliseconds. The signal of a broken pipe would end
// it.
TEST(ZCIODescriptorDelegate, MovesBytesThroughPipesAndSocketsInTime) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  sigaction(SIGALRM, &action, nullptr);
  const itimerval timer = {{0, 3000}, {0, 3000}};
  setitimer(ITIMER_REAL, &timer, nullptr);
  const foundation::Data bytes(1 << 20, 'x');
  for (const int kind : {0, O_NONBLOCK, int{SOCK_STREAM}, SOCK_STREAM | SOCK_NONBLOCK}) {
    int ends[2];
    ASSERT_EQ(kind & SOCK_STREAM ? socketpair(AF_UNIX, kind, 0, ends) : pipe2(ends, kind), 0);
    auto reader = std::make_shared<ZCIODescriptorDelegate>(platform::FileHandle(ends[0]));
    auto writer = std::make_shared<ZCIODescriptorDelegate>(platform::FileHandle(ends[1]));
    ZCIOStream in(reader), out(writer);
    in.setReadTimeout(0.05);
    out.setWriteTimeout(0.05);
    const auto due = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
    EXPECT_TRUE(ZCIOUtils::read(in, 1).empty());
    const std::int64_t count = out.write(bytes.data(), bytes.size());
    EXPECT_GE(std::chrono::steady_clock::now(), due);
    EXPECT_EQ(out.write(bytes.data(), bytes.size()), ZCIO_ERROR);
    EXPECT_EQ(reader->readError()->code(), ETIMEDOUT);
    EXPECT_EQ(writer->writeError()->code(), ETIMEDOUT);
    EXPECT_EQ(ZCIOUtils::read(in, count + 1).size(), static_cast<std::size_t>(count));
    for (const double timeout : {100.0, ZCIO_NO_TIMEOUT}) {
      in.setReadTimeout(timeout);
      out.setWriteTimeout(timeout);
      std::thread thread([&] { EXPECT_EQ(ZCIOUtils::read(in, 1 << 20), bytes); });
      EXPECT_EQ(out.write(bytes.data(), bytes.size()), 1 << 20);
      thread.join();
    }
    reader.reset();
    EXPECT_EQ(out.write(bytes.data(), 1), ZCIO_ERROR);
    EXPECT_EQ(writer->writeError()->code(), EPIPE);
  }
}
