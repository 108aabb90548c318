#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace platform {

/// The content of a regular file of at most `limit` bytes; nothing when it is longer, is no regular
/// file (nothing waits for the writer of a pipe) or cannot be read.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit);

}  // namespace platform
