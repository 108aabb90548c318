#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "ZDomain/vendors/fmdb/FMDatabaseBlocks.h"
#include "ZDomain/vendors/fmdb/FMDatabasePoolDelegate.h"
#include "foundation/Error.h"
#include "foundation/Mutex.h"
#include "foundation/NSException.h"
#include "foundation/NullableText.h"
#include "foundation/Value.h"
#include "platform/Queue.h"

/// A connection was given back to a pool that has it already (name "Database already in pool").
class FMDatabaseAlreadyInPoolException : public foundation::NSException {
 public:
  explicit FMDatabaseAlreadyInPoolException(const std::string& reason);
};

/// Connections to one file, lent to one caller each, made when there is no idle one.
///
/// A lent connection is used on the caller's thread, side by side with the others. The block
/// operations give it back whatever the block does, and pass its exceptions on; the block gets a
/// null connection when there is none to lend. The pool lives on while an operation runs. In memory
/// (a null path) each connection has a database of its own.
///
/// Thread safety: any thread, every member.
///
///     const auto pool = FMDatabasePool::databasePoolWithPath("/var/lib/example/people.db");
///     pool->inDatabase([&](FMDatabase* database) {
///       if (database) count = database->intForQuery("select count(*) from person");
///     });
class FMDatabasePool : public foundation::Object,
                       public std::enable_shared_from_this<FMDatabasePool> {
  struct Key {};

 public:
  /// SQLite's flags to read and write, and to make the file when there is none.
  static constexpr int defaultOpenFlags = 6;

  /// databasePoolWithPath:, databasePoolWithPath:flags:
  ///
  /// An empty pool for the file at `path`, null for memory, with SQLite's open `flags`.
  static std::shared_ptr<FMDatabasePool> databasePoolWithPath(
      foundation::NullableText path = nullptr, int flags = defaultOpenFlags);

  FMDatabasePool(Key, foundation::NullableText path, int flags);
  FMDatabasePool(const FMDatabasePool&) = delete;
  FMDatabasePool& operator=(const FMDatabasePool&) = delete;

  /// The path; a new one counts for connections that are made from now on.
  std::optional<std::string> path() const;
  void setPath(foundation::NullableText path);

  int openFlags() const { return openFlags_; }

  /// How many connections there may be, idle and lent out; 0, as at first, means any number.
  std::uint64_t maximumNumberOfDatabasesToCreate() const { return maximum_; }
  void setMaximumNumberOfDatabasesToCreate(std::uint64_t maximum) { maximum_ = maximum; }

  /// Null at first. Held weakly.
  std::shared_ptr<FMDatabasePoolDelegate> delegate() const;
  void setDelegate(const std::shared_ptr<FMDatabasePoolDelegate>& delegate);

  /// Lends out a connection, to be given back by `pushDatabaseBackInPool`.
  ///
  /// Null, with a line on the console, when the maximum has been reached or the connection cannot
  /// be opened; null when the delegate refuses it. An idle connection that this happens to counts
  /// as lent out from then on.
  std::shared_ptr<FMDatabase> db();

  /// Takes a connection back; null is ignored. Raises FMDatabaseAlreadyInPoolException when it is
  /// idle already.
  void pushDatabaseBackInPool(const std::shared_ptr<FMDatabase>& database);

  /// Runs `block` while the lists of connections stand still: any other operation of the pool waits
  /// meanwhile, and one of the block's own stops the process with a message.
  template <class Block>
  void executeLocked(Block&& block) const {
    lockQueue_->sync(block);
  }

  std::size_t countOfCheckedInDatabases() const;   ///< idle
  std::size_t countOfCheckedOutDatabases() const;  ///< lent out
  std::size_t countOfOpenDatabases() const;        ///< both

  /// Forgets all connections; each closes when its last user lets go of it.
  void releaseAllDatabases();

  /// Runs `block` with an FMDatabase*.
  template <class Block>
  void inDatabase(Block&& block) {
    lend(block);
  }

  /// Runs `block` in an exclusive transaction. The block gets an FMDatabase* and a bool*, which it
  /// sets to roll back; an exception rolls back as well. What becomes of beginning and ending the
  /// transaction is not checked.
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
    lend([&](FMDatabase* database) {
      FMDatabaseBlocks::inTransaction(database, deferred, withBlock);
    });
  }

  /// Runs `block`, as that of `inTransaction`, inside a savepoint of a fresh name. Returns the
  /// error of the last step that failed; the block does not run when the savepoint cannot be
  /// started, or when there is no connection (without an error then).
  template <class Block>
  std::optional<foundation::Error> inSavePoint(Block&& block) {
    const std::string name = nextSavePointName();
    std::optional<foundation::Error> error;
    lend([&](FMDatabase* database) {
      error = FMDatabaseBlocks::inSavePoint(database, name, block);
    });
    return error;
  }

 private:
  using Databases = std::vector<std::shared_ptr<FMDatabase>>;

  template <class Work>
  void lend(Work&& work) {
    const auto self = weak_from_this().lock();  // the work may let go of the last reference
    const std::shared_ptr<FMDatabase> database = db();
    try {
      work(database.get());
    } catch (...) {
      takeBack(database);
      throw;
    }
    pushDatabaseBackInPool(database);
  }

  std::shared_ptr<FMDatabase> checkOut(FMDatabasePoolDelegate* delegate);
  bool admit(const std::shared_ptr<FMDatabase>& database, bool isNew,
             FMDatabasePoolDelegate* delegate);
  std::shared_ptr<FMDatabase> takeIdle();
  std::shared_ptr<FMDatabase> makeWithinMaximum() const;
  bool takeBack(const std::shared_ptr<FMDatabase>& database);
  static std::string nextSavePointName();

  mutable foundation::Mutex mutex_;
  std::optional<std::string> path_ ZARVO_GUARDED_BY(mutex_);
  std::weak_ptr<FMDatabasePoolDelegate> delegate_ ZARVO_GUARDED_BY(mutex_);
  const platform::QueueRef lockQueue_;
  Databases databaseInPool_;   // idle; this and the next on `lockQueue_` only
  Databases databaseOutPool_;  // lent out
  std::atomic<std::uint64_t> maximum_{0};
  const int openFlags_;
};
