#pragma once

#include "foundation/Error.h"
#include "foundation/URL.h"
#include "platform/Service.h"

namespace platform {

/// Whose folders: the current user's, or the whole machine's.
enum class SearchPathDomain { user, local };

enum class SearchPathDirectory { library, applicationSupport };

/// The standard folders.
///
/// On Linux the home folder is the password database's entry of the effective user. User domain:
/// Application Support is `$XDG_DATA_HOME` or `~/.local/share`, Library is `$XDG_STATE_HOME` or
/// `~/.local/state`; a variable counts only when it holds an absolute path, and neither does when
/// the effective user is root or differs from the real one. Local domain: Application Support is
/// `/var/lib`, Library is `/var/lib`. Thread safety: any thread.
class Folders : public Service<Folders> {
 public:
  static Folders& production();

  /// The folder, whether or not it exists; an error when the system knows none.
  virtual foundation::Result<foundation::URL> url(SearchPathDirectory directory,
                                                  SearchPathDomain domain) = 0;

  /// The folder for temporary files: on Linux `/tmp` for root, else `$TMPDIR` or `/tmp`.
  virtual foundation::URL temporaryDirectory() = 0;
};

}  // namespace platform
