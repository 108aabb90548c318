#pragma once

#include <errno.h>

#include <string>
#include <string_view>

#include "foundation/Error.h"

namespace platform {

/// Makes a system call again as long as a signal interrupts it; the result is the last call's.
template <class Call>
auto retryInterrupted(const Call& call) {
  for (;;) {
    const auto result = call();
    if (result != -1 || errno != EINTR) return result;
  }
}

/// As `retryInterrupted`, for a call on a path; a path that holds a zero byte fails with EINVAL.
template <class Call>
auto callWithPath(std::string_view path, const Call& call) {
  const std::string terminated(path);
  return retryInterrupted([&]() -> decltype(call(terminated.c_str())) {
    if (path.find('\0') == std::string_view::npos) return call(terminated.c_str());
    errno = EINVAL;
    return -1;
  });
}

/// Why the system call `call` on `operand` failed: `code`, which is errno unless it is given.
inline foundation::Error systemError(std::string_view call, std::string_view operand,
                                     int code = errno) {
  std::string operation(call);
  operation += ' ';
  operation += operand;
  return foundation::Error::posix(code, std::move(operation));
}

}  // namespace platform
