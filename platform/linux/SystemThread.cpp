#include "platform/linux/SystemThread.h"

#include <pthread.h>
#include <signal.h>

#include <system_error>
#include <thread>
#include <utility>

namespace platform {

bool startSystemThread(const char* name, std::function<void()> body) {
  sigset_t all;
  sigset_t previous;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &previous);
  bool started = true;
  try {
    std::thread([name, run = std::move(body)] {
      pthread_setname_np(pthread_self(), name);
      run();
    }).detach();
  } catch (const std::system_error&) {
    started = false;
  }
  pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  return started;
}

}  // namespace platform
