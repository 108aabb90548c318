#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>

namespace platform {

/// Tells once when a process ends, for as long as this lives. Not told of a process that has ended
/// and was waited for before, nor when the system has no descriptor left.
class ProcessExit {
 public:
  /// `ended` is called on a thread of the platform's own and must be quick. A call that has begun
  /// may still be running when this is gone.
  ProcessExit(pid_t pid, std::function<void()> ended);
  ~ProcessExit();
  ProcessExit(const ProcessExit&) = delete;
  ProcessExit& operator=(const ProcessExit&) = delete;

 private:
  class Descriptor;
  const std::shared_ptr<Descriptor> descriptor_;
};

}  // namespace platform
