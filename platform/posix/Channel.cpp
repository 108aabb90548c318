#include "platform/Channel.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include <limits.h>

#include "platform/Queue.h"
#include "platform/posix/BrokenPipeGuard.h"
#include "platform/posix/SystemCall.h"

using foundation::Result;

namespace platform {
namespace {

/// The end of a call's time.
class Deadline {
 public:
  explicit Deadline(foundation::TimeInterval timeout)
      : isNever_(!(timeout >= 0 && timeout < longest)),
        time_(Clock::now() + std::chrono::ceil<Clock::duration>(
                                 std::chrono::duration<double>(isNever_ ? 0 : timeout))) {}

  bool isNever() const { return isNever_; }
  bool hasPassed() const { return !isNever_ && Clock::now() >= time_; }

  /// What is left, as `poll` takes it.
  int pollTime() const {
    if (isNever_) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time_ - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX));
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr foundation::TimeInterval longest = 1e9;  // three decades

  const bool isNever_;
  const Clock::time_point time_;
};

Result<void> waitUntil(const Deadline& deadline, const FileHandle& handle, short events) {
  const BlockingRegion waiting;
  pollfd descriptor = {handle.descriptor(), events, 0};
  while (true) {
    const int count = poll(&descriptor, 1, deadline.pollTime());
    if (count > 0) return {};
    if (count == -1 && errno != EINTR) return systemError("poll", handle.path());
    if (deadline.hasPassed()) return systemError("poll", handle.path(), ETIMEDOUT);
  }
}

/// Makes a call until it has moved something or fails. A call that `mayBlock` is made only when the
/// descriptor is ready.
template <class Call>
Result<std::size_t> move(const FileHandle& handle, const char* name, short events,
                         const Deadline& deadline, bool mayBlock, const Call& call) {
  bool isReady = !mayBlock;
  while (true) {
    if (!isReady) {
      if (const Result<void> ready = waitUntil(deadline, handle, events); !ready) {
        return ready.error();
      }
    }
    const BlockingRegion waiting;
    const ssize_t count = retryInterrupted(call);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EAGAIN && errno != EWOULDBLOCK) return systemError(name, handle.path());
    if (deadline.hasPassed()) return systemError(name, handle.path(), ETIMEDOUT);
    isReady = false;
  }
}

}  // namespace

Channel::Channel(FileHandle handle) : handle_(std::move(handle)), kind_(kindOf(handle_)) {}

Channel::Kind Channel::kindOf(const FileHandle& handle) {
  struct stat status {};
  if (fstat(handle.descriptor(), &status) == -1) return Kind::file;  // every call fails at once
  if (S_ISSOCK(status.st_mode)) return Kind::socket;
  return S_ISREG(status.st_mode) ? Kind::file : Kind::other;
}

Result<std::size_t> Channel::read(std::uint8_t* buffer, std::size_t length,
                                  foundation::TimeInterval timeout) const {
  const Deadline deadline(timeout);
  const int descriptor = handle_.descriptor();
  const bool mayBlock = kind_ == Kind::other && !deadline.isNever();
  length = std::min<std::size_t>(length, INT_MAX);
  return move(handle_, "read", POLLIN, deadline, mayBlock, [&] {
    return kind_ == Kind::socket ? recv(descriptor, buffer, length, MSG_DONTWAIT)
                                 : ::read(descriptor, buffer, length);
  });
}

Result<std::size_t> Channel::write(foundation::DataView data,
                                   foundation::TimeInterval timeout) const {
  const Deadline deadline(timeout);
  const int descriptor = handle_.descriptor();
  const bool mayBlock = kind_ == Kind::other && !deadline.isNever();
  // A pipe that is ready takes so many bytes without blocking.
  const std::size_t longest = mayBlock ? PIPE_BUF : INT_MAX;
  std::optional<BrokenPipeGuard> brokenPipe;
  if (kind_ == Kind::other) brokenPipe.emplace();
  std::size_t written = 0;
  while (written < data.size()) {
    const foundation::DataView piece =
        data.subspan(written, std::min(longest, data.size() - written));
    const Result<std::size_t> count = move(handle_, "write", POLLOUT, deadline, mayBlock, [&] {
      return kind_ == Kind::socket
                 ? send(descriptor, piece.data(), piece.size(), MSG_DONTWAIT | MSG_NOSIGNAL)
                 : ::write(descriptor, piece.data(), piece.size());
    });
    if (!count && brokenPipe) brokenPipe->takeSignal();
    if (!count || *count == 0) return written > 0 ? Result<std::size_t>(written) : count;
    written += *count;
  }
  return written;
}

}  // namespace platform
