#pragma once

class FMDatabase;
class FMDatabasePool;

/// Decides about, and hears of, the connections that a pool adds. Both are optional.
///
/// Called on the pool's lock queue, on the thread that asked for a connection. The connection may
/// be used, and the pool's properties read; an operation of the same pool would never return, and
/// stops the process with a message. After an exception, which passes on to who asked, the pool has
/// forgotten the connection.
class FMDatabasePoolDelegate {
 public:
  virtual ~FMDatabasePoolDelegate() = default;

  /// databasePool:shouldAddDatabaseToPool:
  ///
  /// Whether an open connection, new or used before, may be lent out; true unless a delegate says
  /// more. When false it is closed, and who asked for a connection gets none.
  virtual bool databasePoolShouldAddDatabaseToPool(FMDatabasePool& pool, FMDatabase& database);

  /// databasePool:didAddDatabase:
  ///
  /// A new connection was added to those that are lent out.
  virtual void databasePoolDidAddDatabase(FMDatabasePool& pool, FMDatabase& database);
};
