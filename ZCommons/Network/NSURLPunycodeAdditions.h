#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/URL.h"

/// URLs with international host names. Thread safety: any thread.
namespace NSURLPunycodeAdditions {

/// URLWithUnicodeString:
///
/// The URL of a text in Unicode, put into ASCII by `encodedURLString`; nothing when the result is
/// no URL.
std::optional<foundation::URL> URLWithUnicodeString(std::string_view text);

/// The URL's absolute string for people to read, as `decodedURLString` of a text gives it.
std::string decodedURLString(const foundation::URL& url);

}  // namespace NSURLPunycodeAdditions
