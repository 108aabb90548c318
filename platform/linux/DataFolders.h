#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A variable of the environment, empty when it is not set. A program with more rights than its
/// caller's, root's included, reads none.
std::string trustedVariable(const char* name);

/// The absolute paths in the list, with colons between, that the variable `name` holds, or in
/// `usual` when there are none.
std::vector<std::string> trustedPathList(const char* name, std::string_view usual);

/// The folders of data that desktop programs share, the user's own first (freedesktop.org base
/// directories), and those where packages of their own world put theirs.
std::vector<std::string> dataFolders();

}  // namespace platform
