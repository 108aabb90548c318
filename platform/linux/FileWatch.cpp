#include "platform/FileWatch.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <limits.h>

#include "foundation/Assertion.h"
#include "foundation/Format.h"
#include "platform/Clock.h"
#include "platform/Console.h"
#include "platform/FileHandle.h"
#include "platform/linux/EventLoop.h"
#include "platform/posix/AlarmHeap.h"

namespace platform {
namespace {

constexpr std::uint32_t watchedEvents = IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;

// The kernel takes milliseconds to let go of an inotify descriptor, also at the end of a process. A
// watch therefore begins late, so that a program that is done before does without; what happened
// meanwhile is found out and told then.
constexpr std::int64_t beginningDelay = 100'000'000;  // nanoseconds

std::string descriptorPath(int descriptor) {
  return foundation::format("/proc/self/fd/%d", descriptor);
}

// Where the file stands now; empty when it cannot be told.
std::string placeOf(int descriptor) {
  std::array<char, PATH_MAX> path;
  const ssize_t length = readlink(descriptorPath(descriptor).c_str(), path.data(), path.size());
  return std::string(path.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
}

}  // namespace

class FileWatch::Source : public Alarm, public std::enable_shared_from_this<Source> {
 public:
  Source(FileHandle file, QueueRef queue, std::function<void(Event)> handler)
      : file_(std::move(file)),
        place_(placeOf(file_.descriptor())),
        queue_(std::move(queue)),
        handler_(std::move(handler)) {}

  int descriptor() const { return file_.descriptor(); }
  bool isCancelled() const { return cancelled_.load(); }

  void beginLater() {
    Clock& clock = Clock::production();
    const std::int64_t now = clock.monotonicNow().time_since_epoch().count();
    clock.set(shared_from_this(), Clock::Hand::monotonic, now + beginningDelay, 0, 0);
  }

  void fire(std::uint64_t) override;
  void cancel();

  // A file that is unlinked while it is open tells a change of its attributes, as many others do.
  // Called by the event loop alone.
  void tell(std::uint32_t mask) {
    if (mask & IN_MOVE_SELF) deliver(Event::renamed);
    if (!(mask & (IN_ATTRIB | IN_DELETE_SELF | IN_Q_OVERFLOW)) || told_) return;
    struct stat status {};
    if (fstat(descriptor(), &status) != 0 || status.st_nlink > 0) return;
    told_ = true;
    deliver(Event::deleted);
  }

 private:
  friend class Hub;

  void deliver(Event event) {
    queue_->async([self = shared_from_this(), event] {
      if (!self->isCancelled()) self->handler_(event);
    });
  }

  const FileHandle file_;
  const std::string place_;  // where the file stood in the beginning
  const QueueRef queue_;
  const std::function<void(Event)> handler_;
  std::atomic<bool> cancelled_{false};
  std::atomic<bool> known_{false};  // to the hub
  int number_ = -1;                 // in the hub; guarded by its lock
  bool told_ = false;               // the deletion; touched by the event loop alone
};

/// The one inotify descriptor. Watches of one file share a number there.
class FileWatch::Hub {
 public:
  static Hub& shared() {
    static Hub& hub = *new Hub;
    return hub;
  }

  // Either this sees that the source was cancelled, or its `cancel` sees that the hub knows it.
  void add(const std::shared_ptr<Source>& source) {
    foundation::MutexLock lock(mutex_);
    source->known_.store(true);
    if (source->isCancelled()) return;
    const std::string path = descriptorPath(source->descriptor());
    source->number_ = inotify_add_watch(inotify_, path.c_str(), watchedEvents);
    if (source->number_ < 0) {
      const auto error = foundation::Error::posix(errno, "inotify_add_watch " + source->place_);
      return Console::log("FileWatch: %@", error);
    }
    sources_.emplace(source->number_, source);
  }

  void remove(const std::shared_ptr<Source>& source) {
    foundation::MutexLock lock(mutex_);
    std::erase_if(sources_, [&](const auto& entry) { return entry.second == source; });
    if (sources_.count(source->number_) == 0) inotify_rm_watch(inotify_, source->number_);
  }

 private:
  Hub() : inotify_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    ZARVO_ASSERT(inotify_ >= 0);
    EventLoop::shared().watch(inotify_, [this] { read(); });
  }

  void read() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    const ssize_t length = ::read(inotify_, buffer.data(), buffer.size());
    for (ssize_t offset = 0; offset < length;) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + offset, sizeof event);
      offset += static_cast<ssize_t>(sizeof event + event.len);
      for (const auto& source : concerned(event)) source->tell(event.mask);
    }
  }

  std::vector<std::shared_ptr<Source>> concerned(const inotify_event& event) {
    foundation::MutexLock lock(mutex_);
    std::vector<std::shared_ptr<Source>> result;
    for (const auto& [number, source] : sources_) {
      if (number == event.wd || (event.mask & IN_Q_OVERFLOW)) result.push_back(source);
    }
    return result;
  }

  const int inotify_;
  foundation::Mutex mutex_;
  std::multimap<int, std::shared_ptr<Source>> sources_ ZARVO_GUARDED_BY(mutex_);
};

void FileWatch::Source::fire(std::uint64_t) {
  Hub::shared().add(shared_from_this());
  tell(IN_ATTRIB);
  if (!told_ && placeOf(descriptor()) != place_) deliver(Event::renamed);
}

void FileWatch::Source::cancel() {
  cancelled_.store(true);
  Clock::production().set(shared_from_this(), Clock::Hand::monotonic, AlarmHeap::never, 0, 0);
  if (known_.load()) Hub::shared().remove(shared_from_this());
}

foundation::Result<std::unique_ptr<FileWatch>> FileWatch::watch(
    int descriptor, QueueRef queue, std::function<void(Event)> handler) {
  FileHandle copy(fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
  if (!copy) return foundation::Error::posix(errno, "fcntl F_DUPFD_CLOEXEC");
  auto source = std::make_shared<Source>(std::move(copy), std::move(queue), std::move(handler));
  source->beginLater();
  return std::unique_ptr<FileWatch>(new FileWatch(std::move(source)));
}

FileWatch::FileWatch(std::shared_ptr<Source> source) : source_(std::move(source)) {}

FileWatch::~FileWatch() { cancel(); }

void FileWatch::cancel() {
  if (!source_) return;
  source_->cancel();
  source_.reset();
}

}  // namespace platform
