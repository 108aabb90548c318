#pragma once

#include <pthread.h>
#include <signal.h>

namespace platform {

/// Keeps the signal of a broken pipe from the thread for the length of a scope. A signal that was
/// waiting before is left where it is.
class BrokenPipeGuard {
 public:
  BrokenPipeGuard() {
    sigemptyset(&brokenPipe_);
    sigaddset(&brokenPipe_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe_, &previous_);
    wasPending_ = sigismember(&previous_, SIGPIPE) == 1 && isPending();
  }
  ~BrokenPipeGuard() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
  BrokenPipeGuard(const BrokenPipeGuard&) = delete;
  BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

  /// To be called when a write within the scope has failed: takes the signal that it left.
  void takeSignal() {
    int signal = 0;
    if (!wasPending_ && isPending()) sigwait(&brokenPipe_, &signal);
  }

 private:
  static bool isPending() {
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
  }

  sigset_t brokenPipe_;
  sigset_t previous_;
  bool wasPending_;
};

}  // namespace platform
