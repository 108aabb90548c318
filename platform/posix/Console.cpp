#include "platform/Console.h"

#include <errno.h>
#include <unistd.h>

#include <exception>
#include <string>

#include "foundation/DateFormatter.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/StandardError.h"

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

class StandardErrorConsole final : public Console {
 public:
  void write(std::string_view text) override {
    const ErrnoKept errnoKept;
    try {
      StandardError::write({line(text)});
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

  const foundation::DateFormatter formatter_{"yyyy-MM-dd HH:mm:ss.SSS",
                                             foundation::TimeZone::local};
};

}  // namespace

Console& Console::production() {
  static Console& console = *new StandardErrorConsole;
  return console;
}

}  // namespace platform
