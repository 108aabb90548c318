#include "platform/linux/ProcessExit.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <utility>

#include "foundation/Mutex.h"
#include "platform/FileHandle.h"
#include "platform/linux/EventLoop.h"

namespace platform {
namespace {

// The C library's header declares its function for C alone.
int openProcess(pid_t pid) { return static_cast<int>(syscall(SYS_pidfd_open, pid, 0)); }

}  // namespace

/// A process's descriptor, which stays readable once the process has ended: the watch ends with the
/// first call. It is not closed while the call looks at it, or the number might be someone else's.
class ProcessExit::Descriptor {
 public:
  explicit Descriptor(pid_t pid) : file_(openProcess(pid)) {}

  int number() {
    foundation::MutexLock lock(mutex_);
    return file_.descriptor();
  }

  /// Returns false when this was done before.
  bool end() {
    foundation::MutexLock lock(mutex_);
    if (!file_) return false;
    EventLoop::shared().unwatch(file_.descriptor());
    file_.close();
    return true;
  }

 private:
  foundation::Mutex mutex_;
  FileHandle file_ ZARVO_GUARDED_BY(mutex_);
};

ProcessExit::ProcessExit(pid_t pid, std::function<void()> ended)
    : descriptor_(std::make_shared<Descriptor>(pid)) {
  const int number = descriptor_->number();
  if (number < 0) return;
  EventLoop::shared().watch(number, [descriptor = descriptor_, call = std::move(ended)] {
    if (descriptor->end()) call();
  });
}

ProcessExit::~ProcessExit() { descriptor_->end(); }

}  // namespace platform
