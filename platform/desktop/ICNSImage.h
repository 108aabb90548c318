#pragma once

#include <optional>

#include "foundation/Data.h"
#include "platform/desktop/Image.h"

namespace platform {

/// The largest picture of an Apple icon file that can be read: elements that hold a PNG, a JPEG
/// 2000 picture of four channels, or pixels in the older forms with 1 to 32 bits a pixel, whose
/// transparency comes from the mask element beside them (opaque when that is missing or damaged).
/// Nothing when the file's elements do not fit into one another and into the file.
std::optional<Image> imageFromICNS(foundation::DataView data);

}  // namespace platform
