#include "foundation/Assertion.h"

#include <cstdio>
#include <cstdlib>

namespace foundation {

void assertion(std::string_view text, std::string_view source, int line) {
  std::fprintf(stderr, "Assertion failed: (%.*s), %.*s:%d.\n", static_cast<int>(text.size()),
               text.data(), static_cast<int>(source.size()), source.data(), line);
  std::abort();
}

}  // namespace foundation
