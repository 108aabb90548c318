#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/Mutex.h"
#include "platform/LockFile.h"

/// An exclusive lock between processes, held on a lock file (flock).
///
/// Two lockers for one path exclude each other, in one process or in two; the lock ends with the
/// process that holds it. The file is created with mode 0600 when it is first needed, never written
/// to and never deleted, and its descriptor is not inherited by children.
///
/// Thread safety: any thread. Threads that share one locker are not excluded from each other:
/// whoever asks a locker that holds the lock gets it. A thread that waits in `waitLock` holds up
/// the others that call the same locker.
///
///     ZCLFileLocker locker("/run/lock/example.lock");
///     if (!locker.lock()) return;   // another one is at work
class ZCLFileLocker {
 public:
  /// Touches no file yet.
  explicit ZCLFileLocker(std::string_view path) : path_(path) {}

  /// Gives up the lock if it is held.
  ~ZCLFileLocker();
  ZCLFileLocker(const ZCLFileLocker&) = delete;
  ZCLFileLocker& operator=(const ZCLFileLocker&) = delete;

  const std::string& path() const { return path_; }

  /// Takes the lock without waiting. True also when this object holds it already, which does not
  /// count; false when another one has it, or the file cannot be opened.
  bool lock();

  /// As `lock`, waiting as long as another one has it.
  bool waitLock();

  /// Gives up the lock. True also when this object does not hold it; false when the system fails
  /// to, which leaves it held.
  bool unlock();

  /// Opens the lock file, if that has not been done; returns whether it is open.
  bool open();

 private:
  using Acquire = foundation::Result<void> (platform::LockFile::*)() const;

  bool take(Acquire acquire);
  bool openFile() ZARVO_REQUIRES(mutex_);

  const std::string path_;
  foundation::Mutex mutex_;
  std::optional<platform::LockFile> file_ ZARVO_GUARDED_BY(mutex_);
  bool locked_ ZARVO_GUARDED_BY(mutex_) = false;
};
