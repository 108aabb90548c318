#pragma once

namespace platform {

/// What the file system services need beyond POSIX; each system brings its own source. The other
/// such calls (`FileSystem::attributes` and the extended attributes) stand in that source as well.

/// How `open` makes a descriptor of a folder that only serves to reach its entries, and needs no
/// permission to read it.
extern const int openToSearch;

/// `rename` that fails with EEXIST when `to` is there. Sets errno.
int renameExclusively(const char* from, const char* to);

/// Drops what the system has cached of a file.
void dropFromCache(int descriptor);

}  // namespace platform
