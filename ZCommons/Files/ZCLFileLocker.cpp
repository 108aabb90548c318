#include "ZCommons/Files/ZCLFileLocker.h"

#include <utility>

using foundation::MutexLock;
using platform::LockFile;

ZCLFileLocker::~ZCLFileLocker() { unlock(); }

bool ZCLFileLocker::lock() { return take(&LockFile::tryLock); }

bool ZCLFileLocker::waitLock() { return take(&LockFile::lock); }

bool ZCLFileLocker::unlock() {
  MutexLock lock(mutex_);
  if (!locked_) return true;
  if (!file_->unlock()) return false;
  locked_ = false;
  return true;
}

bool ZCLFileLocker::open() {
  MutexLock lock(mutex_);
  return openFile();
}

bool ZCLFileLocker::take(Acquire acquire) {
  MutexLock lock(mutex_);
  if (locked_) return true;
  if (!openFile()) return false;
  locked_ = static_cast<bool>((*file_.*acquire)());
  return locked_;
}

bool ZCLFileLocker::openFile() {
  if (file_) return true;
  auto opened = LockFile::open(path_);
  if (!opened) return false;
  file_ = *std::move(opened);
  return true;
}
