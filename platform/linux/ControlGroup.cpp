#include "platform/linux/ControlGroup.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace platform {
namespace {

using Texts = std::vector<std::string>;

std::string unescaped(std::string_view unit) {
  std::string result;
  while (!unit.empty()) {
    unsigned char byte = 0;
    if (unit.size() >= 4 && unit.starts_with("\\x") &&
        std::from_chars(unit.data() + 2, unit.data() + 4, byte, 16).ptr == unit.data() + 4) {
      result += static_cast<char>(byte);
      unit.remove_prefix(4);
    } else {
      result += unit.front();
      unit.remove_prefix(1);
    }
  }
  return result;
}

bool removePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// Cuts the number of this run off a unit's name: "-RANDOM.scope", "@RANDOM.service", ".service".
bool removeRun(std::string_view& unit) {
  const std::size_t dot = unit.rfind('.');
  if (dot == std::string_view::npos) return false;
  const std::string_view type = unit.substr(dot);
  unit = unit.substr(0, dot);
  if (type == ".scope") {
    const std::size_t dash = unit.rfind('-');
    if (dash == std::string_view::npos) return false;
    unit = unit.substr(0, dash);
    return true;
  }
  unit = unit.substr(0, unit.find('@'));
  return type == ".service";
}

/// "ID" after "LAUNCHER-" or the whole.
Texts identifiersOfDesktopUnit(std::string_view name) {
  Texts result;
  const std::size_t dash = name.find('-');
  if (dash != std::string_view::npos) result.push_back(unescaped(name.substr(dash + 1)));
  result.push_back(unescaped(name));
  return result;
}

/// Desktop entries of snap packages are named "PACKAGE_APPLICATION".
Texts identifiersOfSnapUnit(std::string_view name) {
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return {};
  const std::string_view package = name.substr(0, dot);
  const std::string_view application = name.substr(dot + 1);
  return {unescaped(package) + "_" + unescaped(application)};
}

/// Cuts "-UUID" or ".UUID" off, the UUID being 36 characters long.
bool removeUUID(std::string_view& unit) {
  constexpr std::size_t length = 36;
  if (!unit.ends_with(".scope")) return false;
  unit.remove_suffix(std::string_view(".scope").size());
  if (unit.size() <= length) return false;
  const char separator = unit[unit.size() - length - 1];
  unit.remove_suffix(length + 1);
  return separator == '-' || separator == '.';
}

Texts identifiersOfUnit(std::string_view unit) {
  if (removePrefix(unit, "snap.")) {
    return removeUUID(unit) ? identifiersOfSnapUnit(unit) : Texts();
  }
  if (removePrefix(unit, "app-")) {
    return removeRun(unit) ? identifiersOfDesktopUnit(unit) : Texts();
  }
  if (removePrefix(unit, "dbus-")) {
    const std::size_t dash = unit.find('-');
    if (dash == std::string_view::npos || !removeRun(unit) || dash >= unit.size()) return {};
    return {unescaped(unit.substr(dash + 1))};
  }
  return {};
}

/// The path of the hierarchy that holds units, unified or named; nothing for a controller's.
std::optional<std::string_view> unitPath(std::string_view line) {
  const std::size_t first = line.find(':');
  const std::size_t second = line.find(':', first + 1);
  if (first == std::string_view::npos || second == std::string_view::npos) return std::nullopt;
  const std::string_view controllers = line.substr(first + 1, second - first - 1);
  if (!controllers.empty() && controllers != "name=systemd") return std::nullopt;
  return line.substr(second + 1);
}

void appendScopes(std::vector<ApplicationScope>& scopes, std::string_view path) {
  while (!path.empty()) {
    const std::size_t slash = path.rfind('/');
    Texts identifiers = identifiersOfUnit(path.substr(slash + 1));
    if (!identifiers.empty()) scopes.push_back({std::string(path), std::move(identifiers)});
    path = path.substr(0, slash == std::string_view::npos ? 0 : slash);
  }
}

}  // namespace

std::vector<ApplicationScope> applicationScopes(std::string_view controlGroups) {
  std::vector<ApplicationScope> scopes;
  while (!controlGroups.empty()) {
    const std::string_view line = controlGroups.substr(0, controlGroups.find('\n'));
    controlGroups.remove_prefix(std::min(line.size() + 1, controlGroups.size()));
    if (const auto path = unitPath(line)) appendScopes(scopes, *path);
  }
  return scopes;
}

}  // namespace platform
