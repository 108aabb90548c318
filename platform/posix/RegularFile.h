#pragma once

#include <string>
#include <string_view>

#include "foundation/Error.h"
#include "platform/FileHandle.h"

namespace platform {

/// Opens a regular file, close-on-exec; `flags` and `mode` are those of `open`. Anything else that
/// stands there is refused (EISDIR or EINVAL), without waiting for the other end of a pipe.
foundation::Result<FileHandle> openRegularFile(std::string_view path, int flags, mode_t mode = 0);

/// Whether a regular file, or a link to one, is at `path`.
bool isRegularFile(const std::string& path);

}  // namespace platform
