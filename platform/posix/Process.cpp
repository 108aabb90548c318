#include "platform/Process.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <charconv>

namespace platform {
namespace {

constexpr int operatingSystemError = 71;  // EX_OSERR of sysexits.h

void require(bool condition) {
  if (!condition) _exit(operatingSystemError);
}

void fillStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    // Those below are open, so this is the one that the system gives out.
    require(open("/dev/null", O_RDWR) == descriptor);
  }
}

void resetSignals() {
  struct sigaction standard {};
  standard.sa_handler = SIG_DFL;
  // Fails for the numbers that nobody may change.
  for (int number = 1; number < NSIG; ++number) sigaction(number, &standard, nullptr);
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

// In place of the old one as a whole: nothing is allocated, so nothing of it is left by accident.
void replaceEnvironment() {
  static char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
  static char language[] = "LANG=C";
  static char locale[] = "LC_ALL=C";
  static char* environment[] = {path, language, locale, nullptr};
  environ = environment;
  tzset();
}

}  // namespace

std::optional<Process::OperatingSystemVersion> Process::operatingSystemVersion() {
  utsname names;
  if (uname(&names) == -1) return std::nullopt;
  OperatingSystemVersion version;
  const std::string_view release = names.release;
  const char* position = release.data();
  const char* const end = position + release.size();
  for (long* number : {&version.majorVersion, &version.minorVersion, &version.patchVersion}) {
    const auto [rest, error] = std::from_chars(position, end, *number);
    if (error != std::errc() || rest == end || *rest != '.') break;
    position = rest + 1;
  }
  return version;
}

uid_t Process::effectiveUserIdentifier() { return geteuid(); }

pid_t Process::processIdentifier() { return getpid(); }

void Process::secureStart() {
  fillStandardDescriptors();
  umask(022);
  resetSignals();
  require(chdir("/") == 0);
  replaceEnvironment();
}

}  // namespace platform
