#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "foundation/Data.h"

namespace platform {

/// One element of an Apple icon file; its content is a part of the file's.
struct ICNSElement {
  std::uint32_t type;  ///< four letters
  foundation::DataView content;
};

/// The elements of a file; nothing when it is none, is cut short, or holds an element that does not
/// fit.
std::optional<std::vector<ICNSElement>> elementsOfICNS(foundation::DataView file);

/// Whether the content holds three channels of `pixelCount` bytes each, packed by runs.
bool isPackedRGB(foundation::DataView content, std::size_t pixelCount);

struct JP2Size {
  std::uint32_t width;
  std::uint32_t height;
};

/// How wide and high a JPEG 2000 file (ISO/IEC 15444-1, annex I) says that it is, when it has four
/// plain channels of eight bits; nothing for every other, since the decoder takes that for granted.
std::optional<JP2Size> sizeOfJP2(foundation::DataView file);

}  // namespace platform
