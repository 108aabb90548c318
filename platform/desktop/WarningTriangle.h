#pragma once

#include "platform/desktop/Image.h"

namespace platform {

/// A yellow triangle with an exclamation mark, 64 pixels a side.
Image warningTriangle();

}  // namespace platform
