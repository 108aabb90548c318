#include "ZDomain/vendors/fmdb/FMDatabaseQueue.h"

#include <atomic>

#include "foundation/Assertion.h"
#include "foundation/Format.h"
#include "platform/Console.h"

using foundation::MutexLock;
using foundation::NullableText;
using platform::Console;

namespace {

// Its address tags the dispatch queues, each with its FMDatabaseQueue.
constexpr char specificKey = 0;

}  // namespace

FMDatabaseQueue::FMDatabaseQueue(Key, NullableText path, int flags) : openFlags_(flags) {
  setPath(path);
}

// What needs the finished object: the class of its connection, and its description.
void FMDatabaseQueue::start() {
  const std::optional<std::string> path = this->path();
  db_ = databaseClass()(path);
  if (!db_ || !db_->openWithFlags(openFlags_)) {
    Console::log("Could not create database queue for path %@", path);
  }
  queue_ = platform::Queue::serialQueue(foundation::format("fmdb.%@", description()));
  queue_->setSpecific(&specificKey, this);
}

FMDatabaseQueue::DatabaseClass FMDatabaseQueue::databaseClass() const {
  return &FMDatabase::databaseWithPath;
}

std::optional<std::string> FMDatabaseQueue::path() const {
  MutexLock lock(mutex_);
  return path_;
}

void FMDatabaseQueue::setPath(NullableText path) {
  MutexLock lock(mutex_);
  path_.reset();
  if (!path.isNull()) path_ = path.string();
}

void FMDatabaseQueue::close() {
  queue_->sync([&] {
    if (db_) db_->close();
    db_ = nullptr;
  });
}

void FMDatabaseQueue::forbidReentry() const {
  if (platform::Queue::currentSpecific(&specificKey) != this) return;
  foundation::assertion(
      "currentSyncQueue != self && \"inDatabase: was called reentrantly on the same queue, which "
      "would lead to a deadlock\"",
      "ZDomain/vendors/fmdb/FMDatabaseQueue", 143);
}

FMDatabase* FMDatabaseQueue::database() {
  if (db_) return db_.get();
  const std::optional<std::string> path = this->path();
  db_ = FMDatabase::databaseWithPath(path);
  if (db_->openWithFlags(openFlags_)) return db_.get();
  Console::log("FMDatabaseQueue could not reopen database for path %@", path);
  db_ = nullptr;
  return nullptr;
}

void FMDatabaseQueue::warnAboutOpenResultSets(const FMDatabase& database) {
  if (!database.hasOpenResultSets()) return;
  Console::log(
      "Warning: there is at least one open result set around after performing [FMDatabaseQueue "
      "inDatabase:]");
}

std::string FMDatabaseQueue::nextSavePointName() {
  static std::atomic<long> next{0};
  return FMDatabaseBlocks::savePointName(next.fetch_add(1, std::memory_order_relaxed));
}
