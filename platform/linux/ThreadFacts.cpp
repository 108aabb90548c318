#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/Process.h"

namespace platform {
namespace {

struct ThreadFacts {
  std::uint32_t identifier = 0;
  bool isMain = false;
};

// Trivially destructible: log calls of exit handlers and of other objects' destructors use it.
constinit thread_local ThreadFacts cachedFacts;

constinit thread_local char threadNameText[64] = {};

const ThreadFacts& readFacts() {
  // The one thread of a forked child is another than it was in the parent.
  [[maybe_unused]] static const int registered =
      pthread_atfork(nullptr, nullptr, [] { cachedFacts = {}; });
  const pid_t identifier = gettid();
  cachedFacts = {static_cast<std::uint32_t>(identifier), identifier == getpid()};
  return cachedFacts;
}

const ThreadFacts& facts() { return cachedFacts.identifier ? cachedFacts : readFacts(); }

// A mask of the size of the kernel's own, which may have more processors than cpu_set_t.
unsigned countProcessors() {
  std::vector<cpu_set_t> processors(1);
  while (processors.size() <= 64) {
    const std::size_t size = processors.size() * sizeof(cpu_set_t);
    if (sched_getaffinity(0, size, processors.data()) == 0) {
      return static_cast<unsigned>(std::max(1, CPU_COUNT_S(size, processors.data())));
    }
    processors.resize(2 * processors.size());
  }
  return 1;
}

}  // namespace

unsigned Process::processorCount() {
  static const unsigned count = countProcessors();
  return count;
}

std::uint32_t Process::threadIdentifier() { return facts().identifier; }

bool Process::isMainThread() { return facts().isMain; }

std::string_view Process::threadName() { return threadNameText; }

void Process::setThreadName(std::string_view name) {
  const auto copy = [name](auto& text) { text[name.copy(text, sizeof text - 1)] = '\0'; };
  copy(threadNameText);
  char systemName[16];
  copy(systemName);
  pthread_setname_np(pthread_self(), systemName);
}

}  // namespace platform
