#pragma once

#include "foundation/Value.h"

/// An object of a class that only the static library knows.
foundation::Value newestBookmark();
