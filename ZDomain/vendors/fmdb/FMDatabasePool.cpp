#include "ZDomain/vendors/fmdb/FMDatabasePool.h"

#include <algorithm>

#include "foundation/Format.h"
#include "platform/Console.h"

using foundation::MutexLock;
using foundation::NullableText;
using platform::Console;

namespace {

bool contains(const std::vector<std::shared_ptr<FMDatabase>>& databases,
              const std::shared_ptr<FMDatabase>& database) {
  return std::find(databases.begin(), databases.end(), database) != databases.end();
}

}  // namespace

FMDatabaseAlreadyInPoolException::FMDatabaseAlreadyInPoolException(const std::string& reason)
    : NSException("Database already in pool", reason) {}

std::shared_ptr<FMDatabasePool> FMDatabasePool::databasePoolWithPath(NullableText path, int flags) {
  return std::make_shared<FMDatabasePool>(Key(), path, flags);
}

FMDatabasePool::FMDatabasePool(Key, NullableText path, int flags)
    : lockQueue_(
          platform::Queue::serialQueue(foundation::format("fmdb.%@", Object::description()))),
      openFlags_(flags) {
  setPath(path);
}

std::optional<std::string> FMDatabasePool::path() const {
  MutexLock lock(mutex_);
  return path_;
}

void FMDatabasePool::setPath(NullableText path) {
  MutexLock lock(mutex_);
  path_.reset();
  if (!path.isNull()) path_ = path.string();
}

std::shared_ptr<FMDatabasePoolDelegate> FMDatabasePool::delegate() const {
  MutexLock lock(mutex_);
  return delegate_.lock();
}

void FMDatabasePool::setDelegate(const std::shared_ptr<FMDatabasePoolDelegate>& delegate) {
  MutexLock lock(mutex_);
  delegate_ = delegate;
}

std::shared_ptr<FMDatabase> FMDatabasePool::db() {
  const std::shared_ptr<FMDatabasePoolDelegate> delegate = this->delegate();
  return lockQueue_->sync([&] { return checkOut(delegate.get()); });
}

// An idle connection that cannot be opened or is refused stays among those that are lent out, and
// so counts against the maximum: callers rely on it.
std::shared_ptr<FMDatabase> FMDatabasePool::checkOut(FMDatabasePoolDelegate* delegate) {
  std::shared_ptr<FMDatabase> database = takeIdle();
  const bool isNew = database == nullptr;
  if (isNew) database = makeWithinMaximum();
  if (!database) return nullptr;
  if (!database->openWithFlags(openFlags_)) {
    Console::log("Could not open up the database at path %@", path());
    return nullptr;
  }
  try {
    return admit(database, isNew, delegate) ? database : nullptr;
  } catch (...) {
    std::erase(databaseOutPool_, database);
    throw;
  }
}

bool FMDatabasePool::admit(const std::shared_ptr<FMDatabase>& database, bool isNew,
                           FMDatabasePoolDelegate* delegate) {
  if (delegate && !delegate->databasePoolShouldAddDatabaseToPool(*this, *database)) {
    database->close();
    return false;
  }
  database->setCheckedOut(true);
  if (!isNew) return true;
  databaseOutPool_.push_back(database);
  if (delegate) delegate->databasePoolDidAddDatabase(*this, *database);
  return true;
}

std::shared_ptr<FMDatabase> FMDatabasePool::takeIdle() {
  if (databaseInPool_.empty()) return nullptr;
  databaseOutPool_.push_back(databaseInPool_.back());
  databaseInPool_.pop_back();
  return databaseOutPool_.back();
}

std::shared_ptr<FMDatabase> FMDatabasePool::makeWithinMaximum() const {
  const std::uint64_t maximum = maximumNumberOfDatabasesToCreate();
  const std::size_t count = databaseOutPool_.size() + databaseInPool_.size();
  if (maximum == 0 || count < maximum) return FMDatabase::databaseWithPath(path());
  Console::log("Maximum number of databases (%ld) has already been reached!", count);
  return nullptr;
}

void FMDatabasePool::pushDatabaseBackInPool(const std::shared_ptr<FMDatabase>& database) {
  if (takeBack(database)) return;
  foundation::raise<FMDatabaseAlreadyInPoolException>(
      "The FMDatabase being put back into the pool is already present in the pool");
}

// False when it is idle already.
bool FMDatabasePool::takeBack(const std::shared_ptr<FMDatabase>& database) {
  if (!database) return true;
  return lockQueue_->sync([&] {
    if (contains(databaseInPool_, database)) return false;
    database->setCheckedOut(false);
    databaseInPool_.push_back(database);
    std::erase(databaseOutPool_, database);
    return true;
  });
}

std::size_t FMDatabasePool::countOfCheckedInDatabases() const {
  return lockQueue_->sync([&] { return databaseInPool_.size(); });
}

std::size_t FMDatabasePool::countOfCheckedOutDatabases() const {
  return lockQueue_->sync([&] { return databaseOutPool_.size(); });
}

std::size_t FMDatabasePool::countOfOpenDatabases() const {
  return lockQueue_->sync([&] { return databaseInPool_.size() + databaseOutPool_.size(); });
}

void FMDatabasePool::releaseAllDatabases() {
  Databases idle, lentOut;  // which close when nobody waits for the lists
  lockQueue_->sync([&] {
    idle.swap(databaseInPool_);
    lentOut.swap(databaseOutPool_);
  });
}

std::string FMDatabasePool::nextSavePointName() {
  static std::atomic<long> next{0};
  return FMDatabaseBlocks::savePointName(next.fetch_add(1, std::memory_order_relaxed));
}
