#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/Data.h"

namespace platform {

/// The number of 16 bits at `offset`, which has two bytes behind it.
inline std::uint32_t bigEndian16(foundation::DataView data, std::size_t offset) {
  return std::uint32_t{data[offset]} << 8 | data[offset + 1];
}

/// The number of 32 bits at `offset`, which has four bytes behind it.
inline std::uint32_t bigEndian32(foundation::DataView data, std::size_t offset) {
  return bigEndian16(data, offset) << 16 | bigEndian16(data, offset + 2);
}

}  // namespace platform
