#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Which application a process is, from a cache that the whole process shares.
///
/// The workspace in force at the first call is watched from then on, so that a process number that
/// is used again never gives an application that has ended. A process that is no application, or
/// one without the property that is asked for, is asked for again each time.
///
/// Thread safety: any thread. What is in the cache is answered without waiting for those who fill
/// it.
///
///     if (const auto identifier = NSWorkspaceUtils::bundleIdentifierByPid(pid))
///     allow(*identifier);
namespace NSWorkspaceUtils {

/// Makes the cache and the monitor that keeps it right, once in a process; the functions below call
/// it themselves.
void initUtils();

/// The bundle identifier of the application that process `pid` is; nothing when it is none.
std::optional<std::string> bundleIdentifierByPid(std::int32_t pid);

/// The display name, in the user's language, of the application that process `pid` is; nothing when
/// it is none.
std::optional<std::string> localizedNameByPid(std::int32_t pid);

}  // namespace NSWorkspaceUtils
