#include "platform/Console.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <exception>
#include <string>

#include "foundation/DateFormatter.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/posix/SystemCall.h"

namespace platform {
namespace {

class ErrnoKept {
 public:
  ErrnoKept() = default;
  ~ErrnoKept() { errno = error_; }
  ErrnoKept(const ErrnoKept&) = delete;
  ErrnoKept& operator=(const ErrnoKept&) = delete;

 private:
  const int error_ = errno;
};

// Keeps a write to a pipe that nobody reads from ending the process.
class BrokenPipeIgnored {
 public:
  BrokenPipeIgnored() {
    sigemptyset(&brokenPipe_);
    sigaddset(&brokenPipe_, SIGPIPE);
    wasPending_ = isPending();
    pthread_sigmask(SIG_BLOCK, &brokenPipe_, &previous_);
  }
  ~BrokenPipeIgnored() {
    int received;
    if (!wasPending_ && isPending()) sigwait(&brokenPipe_, &received);
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  }
  BrokenPipeIgnored(const BrokenPipeIgnored&) = delete;
  BrokenPipeIgnored& operator=(const BrokenPipeIgnored&) = delete;

 private:
  static bool isPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
  }

  sigset_t brokenPipe_;
  sigset_t previous_;
  bool wasPending_;
};

class StandardErrorConsole final : public Console {
 public:
  void write(std::string_view text) override {
    const ErrnoKept errnoKept;
    try {
      writeLine(line(text));
    } catch (const std::exception&) {
      // No memory for the line: it is lost.
    }
  }

 private:
  std::string line(std::string_view text) const {
    std::string line = formatter_.stringFromDate(Clock::current().now());
    line += foundation::format(" %@[%d] ", Bundle::production().processName(), getpid());
    line += text;
    line += '\n';
    return line;
  }

  static void writeLine(std::string_view line) {
    const BrokenPipeIgnored brokenPipeIgnored;
    while (!line.empty()) {
      const ssize_t count =
          retryInterrupted([&] { return ::write(STDERR_FILENO, line.data(), line.size()); });
      if (count <= 0) return;
      line.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  const foundation::DateFormatter formatter_{"yyyy-MM-dd HH:mm:ss.SSS",
                                             foundation::TimeZone::local};
};

}  // namespace

Console& Console::production() {
  static Console& console = *new StandardErrorConsole;
  return console;
}

}  // namespace platform
