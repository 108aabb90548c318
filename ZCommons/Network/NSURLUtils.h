#pragma once

#include <optional>
#include <string>

#include "foundation/URL.h"

/// Parts of URLs. Thread safety: any thread.
namespace NSURLUtils {

/// "host:port" when `url` has an explicit port, else the host alone; a port without a host follows
/// the text "(null)". Nothing when there is neither.
std::optional<std::string> hostWithPort(const foundation::URL& url);

/// The absolute string from the first "/" behind the authority on: behind "://" if there is one,
/// else behind "//" at the beginning. The whole of it when there is neither, or no "/" follows.
std::string relativeUrlString(const foundation::URL& url);

}  // namespace NSURLUtils
