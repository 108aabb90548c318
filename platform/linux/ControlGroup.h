#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A control group that a session manager made for one run of an application.
struct ApplicationScope {
  std::string path;  ///< of the control group; one run of one application
  /// What the application's identifier may be, likeliest first: a unit's name does not tell a
  /// launcher in front of the identifier from the identifier's own first part.
  std::vector<std::string> identifiers;
};

/// The scopes in the text of a process's control-group memberships, innermost first.
///
/// Understands the unit names of desktop sessions ("app-LAUNCHER-ID-RANDOM.scope",
/// "app-LAUNCHER-ID@RANDOM.service", the launcher optional), of activation by message bus
/// ("dbus-:1.2-ID@RANDOM.service") and of snap packages ("snap.PACKAGE.APPLICATION-UUID.scope"),
/// with systemd's escapes ("\x2d").
std::vector<ApplicationScope> applicationScopes(std::string_view controlGroups);

}  // namespace platform
