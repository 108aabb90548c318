#include "platform/linux/DesktopWorkspace.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>

#include "foundation/Mutex.h"
#include "platform/Queue.h"
#include "platform/Timer.h"
#include "platform/linux/ApplicationProcesses.h"
#include "platform/linux/ProcessExit.h"

namespace platform {
namespace {

constexpr foundation::TimeInterval lookInterval = 0.75;
constexpr foundation::TimeInterval lookLeeway = 0.125;

using Kind = RunningApplicationsChange::Kind;
using Processes = std::vector<ApplicationProcess>;

bool saysTheSame(const ApplicationProcess& a, const ApplicationProcess& b) {
  return a.identity == b.identity && a.record->bundleIdentifier == b.record->bundleIdentifier &&
         a.record->localizedName == b.record->localizedName;
}

bool holds(const Processes& processes, const ApplicationProcess& process) {
  return std::any_of(processes.begin(), processes.end(),
                     [&](const auto& other) { return saysTheSame(other, process); });
}

/// Takes out of `list` what `found` lacks.
RunningApplicationsChange removeEnded(Processes& list, const Processes& found) {
  RunningApplicationsChange change{Kind::removal, {}, {}, {}};
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (holds(found, list[i])) continue;
    change.indexes.push_back(i);
    change.oldRecords.push_back(list[i].record);
  }
  std::erase_if(list, [&](const auto& process) { return !holds(found, process); });
  return change;
}

/// Puts into `list` what only `found` has, each at the place of its age.
RunningApplicationsChange insertLaunched(Processes& list, const Processes& found) {
  RunningApplicationsChange change{Kind::insertion, {}, {}, {}};
  Processes merged;
  auto old = list.begin();
  for (const ApplicationProcess& process : found) {
    if (holds(list, process)) continue;
    while (old != list.end() && old->identity < process.identity) merged.push_back(*old++);
    change.indexes.push_back(merged.size());
    change.newRecords.push_back(process.record);
    merged.push_back(process);
  }
  merged.insert(merged.end(), old, list.end());
  list = std::move(merged);
  return change;
}

}  // namespace

/// The list of running applications and those who observe it.
///
/// While there are observers the list is changed on the queue alone, and each change is told there
/// before the next is made; who joins does so between two changes. The mutex is never held while
/// observers are called or processes are looked at.
class DesktopWorkspace::Tracker : public std::enable_shared_from_this<Tracker> {
 public:
  Tracker(ApplicationCatalog::Places places, ProcFileSystem processes)
      : processes_(std::move(places), std::move(processes)) {}

  ApplicationCatalog& catalog() { return processes_.catalog(); }

  std::vector<RunningApplicationRef> list() {
    if (!isObserved()) {
      Processes found = processes_.all();
      foundation::MutexLock lock(mutex_);
      if (observerCount_ == 0) {
        removeEnded(list_, found);
        insertLaunched(list_, found);
        listWasTaken_ = true;
      }
    }
    std::vector<RunningApplicationRef> records;
    foundation::MutexLock lock(mutex_);
    for (const ApplicationProcess& process : list_) records.push_back(process.record);
    return records;
  }

  RunningApplicationRef application(pid_t pid) {
    std::optional<ApplicationProcess> found = processes_.withProcessIdentifier(pid);
    if (!found) return nullptr;
    {
      foundation::MutexLock lock(mutex_);
      for (const ApplicationProcess& process : list_) {
        if (saysTheSame(process, *found)) return process.record;
      }
      if (observerCount_ == 0) return found->record;
    }
    // Who asks for a process may keep the answer until its end is told, so it has to be in the list
    // even when it ends before the next look.
    queue_->async([self = shared_from_this(), process = *found] { self->add(process); });
    return found->record;
  }

  foundation::Observation observe(std::function<void(const RunningApplicationsChange&)> observer) {
    foundation::Observation observation;
    onQueue([&] {
      if (!hasList()) list();
      observation = observers_.add(std::move(observer));
      start();
    });
    return foundation::Observation(
        [weak = weak_from_this(),
         kept = std::make_shared<foundation::Observation>(std::move(observation))] {
          kept->stop();
          if (const auto self = weak.lock()) self->stop();
        });
  }

 private:
  template <class F>
  void onQueue(F function) {
    if (queue_->isCurrentThreadInside()) {
      function();
    } else {
      queue_->sync(function);
    }
  }

  bool hasList() {
    foundation::MutexLock lock(mutex_);
    return listWasTaken_;
  }

  bool isObserved() {
    foundation::MutexLock lock(mutex_);
    return observerCount_ > 0;
  }

  void start() {
    foundation::MutexLock lock(mutex_);
    if (observerCount_++ > 0) return;
    timer_ = Timer::timer(queue_, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->look();
    });
    timer_->startAfter(lookInterval, lookInterval, lookLeeway);
    watchExits();
    lookSoon();
  }

  void stop() {
    foundation::MutexLock lock(mutex_);
    if (--observerCount_ > 0) return;
    timer_.reset();
    exits_.clear();
  }

  /// Looks on the queue; calls before it has begun are one.
  void lookSoon() {
    if (lookPending_.exchange(true)) return;
    queue_->async([weak = weak_from_this()] {
      const auto self = weak.lock();
      if (!self) return;
      self->lookPending_.store(false);
      self->look();
    });
  }

  /// On the queue.
  void look() {
    if (!isObserved()) return;
    const Processes found = processes_.all();
    update(removeEnded, found);
    update(insertLaunched, found);
  }

  /// On the queue. An application whose end was told already is told as launched and, with the next
  /// look, as ended again.
  void add(const ApplicationProcess& process) {
    if (!isObserved()) return;
    update(insertLaunched, {process});
    lookSoon();
  }

  /// Changes the list and tells what was changed. On the queue.
  void update(RunningApplicationsChange (*step)(Processes& list, const Processes& found),
              const Processes& found) {
    RunningApplicationsChange change;
    {
      foundation::MutexLock lock(mutex_);
      change = step(list_, found);
      if (change.indexes.empty()) return;
      watchExits();
    }
    observers_.notify(change);
  }

  void watchExits() ZARVO_REQUIRES(mutex_) {
    std::map<ProcessIdentity, std::unique_ptr<ProcessExit>> exits;
    for (const ApplicationProcess& process : list_) {
      const auto known = exits_.find(process.identity);
      exits[process.identity] =
          known != exits_.end()
              ? std::move(known->second)
              : std::make_unique<ProcessExit>(process.identity.pid, [weak = weak_from_this()] {
                  if (const auto self = weak.lock()) self->lookSoon();
                });
    }
    exits_.swap(exits);
  }

  ApplicationProcesses processes_;
  const QueueRef queue_ = Queue::serialQueue("zarvo.workspace");
  foundation::ObserverList<const RunningApplicationsChange&> observers_;
  std::atomic<bool> lookPending_{false};

  foundation::Mutex mutex_;
  std::size_t observerCount_ ZARVO_GUARDED_BY(mutex_) = 0;
  bool listWasTaken_ ZARVO_GUARDED_BY(mutex_) = false;
  Processes list_ ZARVO_GUARDED_BY(mutex_);
  std::map<ProcessIdentity, std::unique_ptr<ProcessExit>> exits_ ZARVO_GUARDED_BY(mutex_);
  TimerRef timer_ ZARVO_GUARDED_BY(mutex_);
};

DesktopWorkspace::DesktopWorkspace(ApplicationCatalog::Places places, ProcFileSystem processes)
    : tracker_(std::make_shared<Tracker>(std::move(places), std::move(processes))) {}

DesktopWorkspace::~DesktopWorkspace() = default;

std::vector<RunningApplicationRef> DesktopWorkspace::runningApplications() {
  return tracker_->list();
}

foundation::Observation DesktopWorkspace::observeRunningApplications(
    std::function<void(const RunningApplicationsChange&)> observer) {
  return tracker_->observe(std::move(observer));
}

RunningApplicationRef DesktopWorkspace::runningApplicationWithProcessIdentifier(pid_t pid) {
  return tracker_->application(pid);
}

std::optional<foundation::URL> DesktopWorkspace::URLForApplicationWithBundleIdentifier(
    std::string_view identifier) {
  const auto contents = tracker_->catalog().contents();
  const Application* const application = contents->withIdentifier(identifier);
  if (!application) return std::nullopt;
  return foundation::URL::fileURLWithPath(application->entryPath);
}

}  // namespace platform
