#pragma once

#include <functional>
#include <memory>

#include "foundation/Error.h"
#include "platform/Queue.h"

namespace platform {

/// Watches an open file for being deleted or renamed.
///
/// Watching follows the file, not its name. What happens in the first tenth of a second is told at
/// the end of it. Destroying the watch ends it; once it is destroyed or cancelled on its queue, the
/// handler does not begin any more. Thread safety: one thread at a time.
class FileWatch {
 public:
  enum class Event { deleted, renamed };

  /// Starts to watch the file behind `descriptor`, which may be closed later; `handler` runs on
  /// `queue`: once for a deletion, each time for a renaming. An error when the descriptor is not
  /// open or the process has no room for another.
  static foundation::Result<std::unique_ptr<FileWatch>> watch(int descriptor, QueueRef queue,
                                                              std::function<void(Event)> handler);

  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  void cancel();

 private:
  class Source;
  class Hub;
  explicit FileWatch(std::shared_ptr<Source> source);

  std::shared_ptr<Source> source_;  // null once cancelled
};

}  // namespace platform
