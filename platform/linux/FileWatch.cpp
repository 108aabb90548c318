#include "platform/FileWatch.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <map>
#include <vector>

#include "foundation/Assertion.h"
#include "foundation/Format.h"
#include "platform/FileHandle.h"
#include "platform/linux/EventLoop.h"

namespace platform {

class FileWatch::Source : public std::enable_shared_from_this<Source> {
 public:
  Source(FileHandle file, QueueRef queue, std::function<void(Event)> handler)
      : file_(std::move(file)), queue_(std::move(queue)), handler_(std::move(handler)) {}

  int descriptor() const { return file_.descriptor(); }

  // A file that is unlinked while it is open tells a change of its attributes, as many others do.
  void tell(std::uint32_t mask) {
    if (mask & IN_MOVE_SELF) deliver(Event::renamed);
    if (!(mask & (IN_ATTRIB | IN_DELETE_SELF | IN_Q_OVERFLOW)) || told_) return;
    struct stat status {};
    if (fstat(descriptor(), &status) != 0 || status.st_nlink > 0) return;
    told_ = true;
    deliver(Event::deleted);
  }

  void cancel() { cancelled_.store(true); }

 private:
  void deliver(Event event) {
    queue_->async([self = shared_from_this(), event] {
      if (!self->cancelled_.load()) self->handler_(event);
    });
  }

  const FileHandle file_;
  const QueueRef queue_;
  const std::function<void(Event)> handler_;
  std::atomic<bool> cancelled_{false};
  bool told_ = false;  // the deletion; touched by the event loop alone
};

namespace {

constexpr std::uint32_t watchedEvents = IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;

}  // namespace

/// The one inotify descriptor. Files with several names or watches share a watch number.
class FileWatch::Hub {
 public:
  static Hub& shared() {
    static Hub& hub = *new Hub;
    return hub;
  }

  foundation::Result<int> add(const std::shared_ptr<Source>& source) {
    foundation::MutexLock lock(mutex_);
    const std::string path = foundation::format("/proc/self/fd/%d", source->descriptor());
    const int number = inotify_add_watch(inotify_, path.c_str(), watchedEvents);
    if (number < 0) return foundation::Error::posix(errno, "inotify_add_watch " + path);
    sources_.emplace(number, source);
    return number;
  }

  void remove(const std::shared_ptr<Source>& source, int number) {
    foundation::MutexLock lock(mutex_);
    std::erase_if(sources_, [&](const auto& entry) { return entry.second == source; });
    if (sources_.count(number) == 0) inotify_rm_watch(inotify_, number);
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

foundation::Result<std::unique_ptr<FileWatch>> FileWatch::watch(
    int descriptor, QueueRef queue, std::function<void(Event)> handler) {
  FileHandle copy(fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
  if (!copy) return foundation::Error::posix(errno, "fcntl F_DUPFD_CLOEXEC");
  auto source =
      std::make_shared<Source>(std::move(copy), std::move(queue), std::move(handler));
  const foundation::Result<int> number = Hub::shared().add(source);
  if (!number) return number.error();
  return std::unique_ptr<FileWatch>(new FileWatch(std::move(source), *number));
}

FileWatch::FileWatch(std::shared_ptr<Source> source, int number)
    : source_(std::move(source)), number_(number) {}

FileWatch::~FileWatch() { cancel(); }

void FileWatch::cancel() {
  if (!source_) return;
  source_->cancel();
  Hub::shared().remove(source_, number_);
  source_.reset();
}

}  // namespace platform
