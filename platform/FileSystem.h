#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/Error.h"

namespace platform {

/// Files and folders by path. Errors name the call, its operand and the system's reason.
///
/// Paths are bytes; one that holds a zero byte is refused (EINVAL). Every descriptor that is opened
/// is close-on-exec, an interrupted call is repeated. Thread safety: any thread.
namespace FileSystem {

enum class FileType { regular, directory, symbolicLink, other };

struct FileAttributes {
  FileType type;
  mode_t permissions;  ///< the twelve mode bits
  uid_t owner;
  gid_t group;
  std::uint64_t size;  ///< bytes
  foundation::Date modificationDate;
  /// When the file was made; nothing where the file system does not record it.
  std::optional<foundation::Date> creationDate;
};

/// Whether something is at `path`; a link counts by what it leads to.
bool exists(std::string_view path);

/// What the file system says of `path`; a last component that is a link is not followed.
foundation::Result<FileAttributes> attributes(std::string_view path);

/// Sets when the content was last changed, and leaves the time of access. A link is followed.
/// Sets the twelve mode bits of a file or folder; a last component that is a link is an error.
foundation::Result<void> setPermissions(std::string_view path, mode_t permissions);

foundation::Result<void> setModificationDate(std::string_view path, foundation::Date date);

/// Makes the folder with those above it. An existing folder is success, anything else in its place
/// an error. `permissions` (the twelve mode bits) are set on the last folder after it is made here,
/// whatever the umask; without them, and above it, new folders get 0777 less the umask. What is
/// there keeps its permissions.
foundation::Result<void> createDirectory(std::string_view path,
                                         std::optional<mode_t> permissions = std::nullopt);

/// Makes an empty file with 0666 less the umask, or empties the one that is there. A last component
/// that is a link is not followed, and what is no regular file is refused.
foundation::Result<void> createFile(std::string_view path);

/// `uncached` content is dropped from the system's cache after it was read.
enum class Caching { cached, uncached };

/// The whole content of a regular file, read to its end whatever its size is said to be. A link is
/// followed; what is no regular file is refused, without waiting for the writer of a pipe.
foundation::Result<foundation::Data> readFile(std::string_view path,
                                              Caching caching = Caching::cached);

/// Replaces the file's content in one step: a reader sees the old or the new content, never a
/// part, also after a loss of power. The new file keeps an existing file's nine permission bits; it
/// belongs to the caller. A link is replaced, not followed. A failure leaves everything as it was.
foundation::Result<void> writeFileAtomically(std::string_view path, foundation::DataView content);

/// Removes a file, a link, or a folder with all its contents.
///
/// Safe against others who may write inside while it runs with more rights than theirs: the item's
/// parent is opened once, below it no link is followed and no path is resolved again, and the way
/// back up leads to the folder it came from or, when a folder was moved away meanwhile, leaves that
/// branch alone (an error). What others keep adding ends in an error (ENOTEMPTY), not in an endless
/// run. At most seven descriptors are open and no stack grows, whatever the depth (up to 262,144
/// folders below one another). File systems mounted below are emptied too; their mount points stay
/// (an error).
///
/// Goes on past what cannot be removed and tells the first error in the end. What others have
/// removed meanwhile is no error, a missing item is (ENOENT). A path whose last component is empty
/// (it ends with a slash), "." or ".." is refused (EINVAL).
foundation::Result<void> removeItem(std::string_view path);

/// Moves within one file system; a target that exists is an error.
foundation::Result<void> moveItem(std::string_view from, std::string_view to);

/// The names in a folder, without "." and "..", in the file system's order.
foundation::Result<std::vector<std::string>> contentsOfDirectory(std::string_view path);

/// Extended attributes. Names are without the namespace that the system puts in front ("user." on
/// Linux). A last component that is a link is not followed.
bool hasExtendedAttribute(std::string_view path, std::string_view name);

/// Sets an attribute without content.
foundation::Result<void> setExtendedAttribute(std::string_view path, std::string_view name);

/// Whether an error says that a file has no such attribute.
bool isAttributeNotFound(const foundation::Error& error);

/// Whether an error says that the file system keeps no extended attributes at all.
bool isAttributesUnsupported(const foundation::Error& error);

foundation::Result<void> removeExtendedAttribute(std::string_view path, std::string_view name);

}  // namespace FileSystem

/// Walks the tree below a folder, hidden entries (names that start with a dot) and everything below
/// them left out.
///
/// A folder comes before its contents; links are told, not followed; entries come in the file
/// system's order; what cannot be read is passed over. One thread at a time.
///
///     DirectoryEnumerator entries(path);
///     while (entries.next()) use(entries.path(), entries.level());
class DirectoryEnumerator {
 public:
  /// A walk below `directory`, which is opened at the first `next`.
  explicit DirectoryEnumerator(std::string_view directory);
  ~DirectoryEnumerator();
  DirectoryEnumerator(const DirectoryEnumerator&) = delete;
  DirectoryEnumerator& operator=(const DirectoryEnumerator&) = delete;

  /// Goes to the next entry; false at the end.
  bool next();

  /// The entry's name, path and level (1 for those directly in the folder), until the next `next`.
  std::string_view name() const;
  std::string_view path() const;
  std::size_t level() const;
  bool isDirectory() const;

  /// Leaves out the contents of the folder that `next` has just come to.
  void skipDescendants();

 private:
  class Walk;
  const std::unique_ptr<Walk> walk_;
};

}  // namespace platform
