#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "ZDomain/vendors/fmdb/FMDatabaseBlocks.h"
#include "foundation/Error.h"
#include "foundation/Mutex.h"
#include "foundation/NullableText.h"
#include "foundation/Value.h"
#include "platform/Queue.h"

/// One connection that any number of threads share: their work runs one piece after the other, on
/// the caller's thread, and each caller waits until its own is done.
///
/// The blocks get the connection, which is null when it could not be reopened after `close`, and
/// must not keep it. An exception that leaves a block passes on to the caller, and the queue goes
/// on. Whoever calls an operation keeps the queue until it returns. A block must not use its own
/// queue: `inDatabase` stops the process with an assertion then, the other operations, `close`
/// among them, with the message of a deadlock.
///
/// Thread safety: any thread, every member.
///
///     const auto queue = FMDatabaseQueue::databaseQueueWithPath("/var/lib/example/people.db");
///     queue->inTransaction([&](FMDatabase* database, bool* rollback) {
///       *rollback = !database || !database->executeUpdate("insert into person values (?)", name);
///     });
class FMDatabaseQueue : public foundation::Object {
 protected:
  struct Key {};

 public:
  /// Makes a closed connection to the database at a path; null counts as one that cannot be opened.
  using DatabaseClass = std::shared_ptr<FMDatabase> (*)(foundation::NullableText path);

  /// SQLite's flags to read and write, and to make the file when there is none.
  static constexpr int defaultOpenFlags = 6;

  /// databaseQueueWithPath:, databaseQueueWithPath:flags:
  ///
  /// A queue with an open connection to the file at `path`, null for a database in memory; opened
  /// with SQLite's open `flags`. When it cannot be opened the console gets a line, and the queue
  /// has a connection on which everything fails. `Subclass` is the class of queue to make.
  template <std::derived_from<FMDatabaseQueue> Subclass = FMDatabaseQueue>
  static std::shared_ptr<Subclass> databaseQueueWithPath(foundation::NullableText path = nullptr,
                                                         int flags = defaultOpenFlags) {
    auto queue = std::make_shared<Subclass>(Key(), path, flags);
    static_cast<FMDatabaseQueue&>(*queue).start();
    return queue;
  }

  FMDatabaseQueue(Key, foundation::NullableText path, int flags);
  FMDatabaseQueue(const FMDatabaseQueue&) = delete;
  FMDatabaseQueue& operator=(const FMDatabaseQueue&) = delete;

  /// The class of the connection that a new queue opens; a subclass may return another. One that
  /// is reopened after `close` is a plain FMDatabase.
  virtual DatabaseClass databaseClass() const;

  /// The path; a new one counts from the next reopening.
  std::optional<std::string> path() const;
  void setPath(foundation::NullableText path);

  int openFlags() const { return openFlags_; }

  /// Waits for the work before it and closes the connection; the next operation reopens it.
  void close();

  /// Runs `block` with an FMDatabase*. A line on the console when it leaves result sets open.
  template <class Block>
  void inDatabase(Block&& block) {
    forbidReentry();
    perform([&](FMDatabase* database) {
      block(database);
      if (database) warnAboutOpenResultSets(*database);
    });
  }

  /// Runs `block` in an exclusive transaction. The block gets an FMDatabase* and a bool*, which it
  /// sets to roll back; an exception rolls back as well. What becomes of beginning and ending the
  /// transaction is not checked: see the connection's `lastError` for that.
  template <class Block>
  void inTransaction(Block&& block) {
    beginTransaction(false, block);
  }

  /// As `inTransaction`, with a deferred transaction.
  template <class Block>
  void inDeferredTransaction(Block&& block) {
    beginTransaction(true, block);
  }

  /// beginTransaction:withBlock:
  ///
  /// The one or the other.
  template <class Block>
  void beginTransaction(bool deferred, Block&& withBlock) {
    perform([&](FMDatabase* database) {
      FMDatabaseBlocks::inTransaction(database, deferred, withBlock);
    });
  }

  /// Runs `block`, as that of `inTransaction`, inside a savepoint of a fresh name. Returns the
  /// error of the last step that failed; the block does not run when the savepoint cannot be
  /// started, or when there is no connection (without an error then).
  template <class Block>
  std::optional<foundation::Error> inSavePoint(Block&& block) {
    return perform([&](FMDatabase* database) {
      return FMDatabaseBlocks::inSavePoint(database, nextSavePointName(), block);
    });
  }

 private:
  template <class Work>
  auto perform(Work&& work) {
    return queue_->sync([&] { return work(database()); });
  }

  void start();
  void forbidReentry() const;
  FMDatabase* database();
  static void warnAboutOpenResultSets(const FMDatabase& database);
  static std::string nextSavePointName();

  mutable foundation::Mutex mutex_;
  std::optional<std::string> path_ ZARVO_GUARDED_BY(mutex_);
  platform::QueueRef queue_;
  std::shared_ptr<FMDatabase> db_;  // once started, used on `queue_` only
  const int openFlags_;
};
