#pragma once

#include <array>
#include <cstdint>

#include "foundation/Data.h"

/// Operations on bytes. Thread safety: any thread.
namespace NSDataUtils {

/// The MD5 digest (RFC 1321) of `data`: a check value, no protection.
std::array<std::uint8_t, 16> md5Digest(foundation::DataView data);

/// The SHA-256 digest (FIPS 180-4) of `data`.
std::array<std::uint8_t, 32> sha256Digest(foundation::DataView data);

}  // namespace NSDataUtils
