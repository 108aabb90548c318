#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace platform {

/// Facts about the running process and its threads. Thread safety: any thread.
namespace Process {

/// The version numbers of an operating system; what it does not tell is 0.
struct OperatingSystemVersion {
  long majorVersion = 0;
  long minorVersion = 0;
  long patchVersion = 0;

  friend bool operator==(const OperatingSystemVersion&, const OperatingSystemVersion&) = default;
};

/// The version of the operating system that runs, on Linux the numbers at the start of the kernel's
/// release ("6.1.0-13-amd64" is 6, 1, 0); nothing when the system does not tell it.
std::optional<OperatingSystemVersion> operatingSystemVersion();

uid_t effectiveUserIdentifier();

pid_t processIdentifier();

/// How many processors the process may use, at least 1; asked of the system once.
unsigned processorCount();

/// A number that names the calling thread in the whole system while it lives; costs no system call
/// after the thread's first.
std::uint32_t threadIdentifier();

/// The name that the calling thread was given by `setThreadName`; empty when it has none. Valid on
/// this thread until it is given another.
std::string_view threadName();

/// Names the calling thread, for log messages and debuggers; at most 63 bytes are kept, and 15 of
/// them by the system.
void setThreadName(std::string_view name);

/// Whether the calling thread is the one that runs `main`.
bool isMainThread();

/// Makes the process safe to go on with more rights than its caller's: fills closed descriptors 0
/// to 2 with the null device, sets the umask to 022, resets every signal disposition and the signal
/// mask to the defaults, goes to "/", and replaces the environment by a fixed one (PATH of the
/// system's folders, LANG and LC_ALL "C"). Call it first thing in `main`, before other threads
/// exist. Ends the process with status 71 (EX_OSERR) when a descriptor cannot be filled.
void secureStart();

}  // namespace Process

}  // namespace platform
