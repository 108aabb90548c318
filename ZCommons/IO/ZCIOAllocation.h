#pragma once

#include <algorithm>
#include <cstdint>
#include <new>
#include <stdexcept>

#include "foundation/Data.h"
#include "foundation/NSException.h"

/// How buffers of the utilities get their memory. Not installed.
namespace ZCIOAllocation {

/// A length as memory takes it. Raises NSMallocException ("buffer") when it is negative.
inline std::size_t checkedSize(std::int64_t length) {
  if (length < 0) foundation::raiseMallocException("buffer");
  return static_cast<std::size_t>(length);
}

/// How much of `wanted` bytes to make room for when `arrived` bytes have come: no more than that
/// again, beyond the first MiB.
inline std::size_t affordable(std::size_t wanted, std::size_t arrived) {
  constexpr std::size_t atFirst = 1024 * 1024;
  return std::min(wanted, std::max(arrived, atFirst));
}

/// Runs `allocation`, and raises NSMallocException ("buffer") when there is no memory.
template <class Allocation>
void checked(const Allocation& allocation) {
  try {
    allocation();
  } catch (const std::bad_alloc&) {
    foundation::raiseMallocException("buffer");
  } catch (const std::length_error&) {
    foundation::raiseMallocException("buffer");
  }
}

}  // namespace ZCIOAllocation
