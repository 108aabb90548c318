#pragma once

#include <string>

#include "foundation/Error.h"

namespace platform {

/// The home folder that the password database has for the effective user; an error when it has no
/// absolute path. Thread safety: any thread.
foundation::Result<std::string> homeFolder();

}  // namespace platform
