#pragma once

#include <optional>
#include <string>

namespace platform {

/// The entries of one folder, without "." and "..", read in one go and then handed out in the file
/// system's order.
///
/// Reading first and acting afterwards makes the list finite, also while others keep adding
/// entries: the system tells many names in the time it takes to make one.
class FolderListing {
 public:
  struct Entry {
    const char* name;    ///< valid until the next `read`
    unsigned char type;  ///< a DT_ constant, DT_UNKNOWN where the file system does not say
  };

  /// Reads the entries of a freshly opened folder in place of those before. On an error, with errno
  /// set, there are those that came before it.
  bool read(int descriptor);

  /// The next entry, or nothing at the end.
  std::optional<Entry> next();

 private:
  std::string entries_;  // a byte for the type, the name, a zero byte; and so on
  std::size_t position_ = 0;
};

}  // namespace platform
