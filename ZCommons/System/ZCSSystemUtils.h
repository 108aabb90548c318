#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Data.h"
#include "foundation/NullableText.h"
#include "platform/Queue.h"

/// Services of the operating system: privileges, child processes, the System keychain, the process
/// table, the main queue.
///
/// The keychain is changed by running "/usr/bin/security" on
/// "/Library/Keychains/System.keychain", which needs root. Thread safety: any thread, every
/// operation; those that run a utility block until it has ended.
class ZCSSystemUtils {
 public:
  ZCSSystemUtils() = delete;

  /// Whether the effective user is root.
  static bool rootPrivileges();

  /// cliUtil:arguments:outputData:
  ///
  /// As the next, in the caller's working directory.
  static int cliUtil(foundation::NullableText utilPath, const std::vector<std::string>& arguments,
                     foundation::Data* outputData);

  /// cliUtil:arguments:currentDirPath:outputData:
  ///
  /// Runs the program at `utilPath`, without a shell, with the arguments as they are, in
  /// `currentDirPath` (null or empty: the caller's). What it and its children write to standard
  /// output and error goes to `outputData`, merged, until the last of them has closed it; with null
  /// it goes where the caller's own output goes.
  ///
  /// Returns the exit status, or the number of the signal that ended the program. Raises
  /// NSInvalidArgumentException ("utilPath") when the path is null, and
  /// `platform::TaskLaunchException`, derived from it, when the program cannot be started.
  static int cliUtil(foundation::NullableText utilPath, const std::vector<std::string>& arguments,
                     foundation::NullableText currentDirPath, foundation::Data* outputData);

  /// cliUtil:arguments:output:
  ///
  /// As `cliUtil`, with the output as text: UTF-8, or ISO Latin-1 when it is not that.
  static int cliUtilOutput(foundation::NullableText utilPath,
                           const std::vector<std::string>& arguments, std::string* output);

  /// A fresh random UUID (RFC 4122, version 4) as 32 upper-case hexadecimal digits.
  static std::string createUUID();

  /// Runs `block` on the main queue and returns after it has run: directly when the current queue
  /// is the main queue, else as `platform::Queue::sync` does, which waits for a main thread that
  /// runs its queue. Passes on what the block raises.
  template <class F>
  static void callOnMainQueue(F&& block) {
    const platform::QueueRef& queue = platform::Queue::mainQueue();
    if (platform::Queue::current() == queue.get()) {
      std::forward<F>(block)();
    } else {
      queue->sync(block);
    }
  }

  /// addCertToSystemKeychainAsTrustedWithName:path:
  ///
  /// Makes the certificate in the file `path` a trusted root of the System keychain, in place of
  /// every certificate with the common name `name`. Returns whether it was added; logs both steps.
  static bool addCertToSystemKeychainAsTrustedWithName(std::string_view name,
                                                       std::string_view path);

  /// Deletes every certificate with the common name `name` from the System keychain. Returns
  /// whether at least one deletion succeeded: false also when there is no such certificate. Each
  /// deletion is tried and logged. `name` goes into a shell command unescaped: pass fixed names
  /// only.
  static bool removeCertFromSystemKeychainWithName(std::string_view name);

  /// The direct children of process `pid`; none, with an error line in the log, when the process
  /// table cannot be read.
  static std::vector<std::int32_t> childPidsForPid(std::int32_t pid);
};
