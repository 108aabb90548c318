#pragma once

#include <string>

namespace platform {

/// The path of the shared library that holds `address` (of a function or a static object), or of
/// the running program when it was linked into that; empty when the system cannot tell. What comes
/// with a library is found from there, wherever it was installed. Thread safety: any thread.
std::string modulePath(const void* address);

}  // namespace platform
