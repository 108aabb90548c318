#include "platform/StandardError.h"

#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <span>

#include "platform/posix/BrokenPipeGuard.h"
#include "platform/posix/SystemCall.h"

namespace platform {
namespace {

constexpr std::size_t mostPieces = 8;

// What is left of the pieces behind the first `count` bytes.
std::span<iovec> rest(std::span<iovec> pieces, std::size_t count) {
  while (!pieces.empty() && count >= pieces.front().iov_len) {
    count -= pieces.front().iov_len;
    pieces = pieces.subspan(1);
  }
  if (!pieces.empty()) {
    pieces.front().iov_base = static_cast<char*>(pieces.front().iov_base) + count;
    pieces.front().iov_len -= count;
  }
  return pieces;
}

}  // namespace

void StandardError::write(std::initializer_list<std::string_view> pieces) {
  std::array<iovec, mostPieces> storage;
  std::size_t count = 0;
  for (const std::string_view piece : pieces) {
    if (count == storage.size()) break;
    storage[count++] = {const_cast<char*>(piece.data()), piece.size()};
  }
  BrokenPipeGuard brokenPipe;
  std::span<iovec> left(storage.data(), count);
  while (!left.empty()) {
    const ssize_t written = retryInterrupted(
        [&] { return ::writev(STDERR_FILENO, left.data(), static_cast<int>(left.size())); });
    if (written <= 0) return brokenPipe.takeSignal();
    left = rest(left, static_cast<std::size_t>(written));
  }
}

}  // namespace platform
