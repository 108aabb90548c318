#pragma once

#include <optional>

#include "foundation/Data.h"
#include "platform/desktop/Image.h"

namespace platform {

/// Whether the bytes begin as those of a PNG file do.
bool isPNG(foundation::DataView data);

/// The picture of a whole PNG file.
std::optional<Image> imageFromPNG(foundation::DataView data);

}  // namespace platform
