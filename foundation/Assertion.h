#pragma once

#include <string_view>

namespace foundation {

/// Prints "Assertion failed: (text), source:line." to standard error and aborts, in every build.
[[noreturn]] void assertion(std::string_view text, std::string_view source, int line);

}  // namespace foundation

/// Checks what can only be false through a programming error; in force in every build.
#define ZARVO_ASSERT(condition) \
  ((condition) ? static_cast<void>(0) : ::foundation::assertion(#condition, __FILE__, __LINE__))
