#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What a desktop entry says of an application (freedesktop.org Desktop Entry format, version 1.5).
struct DesktopEntry {
  bool isApplication = false;        ///< "Type" is "Application"
  bool hidden = false;               ///< as if the entry were not there, nor one further down
  bool noDisplay = false;            ///< an application that menus leave out
  std::optional<std::string> name;   ///< "Name" in the first of the languages that has one
  std::string icon;                  ///< an icon theme's name, or a path; empty: none
  std::string tryExec;               ///< empty: none
  std::vector<std::string> command;  ///< "Exec", split and unquoted, field codes kept

  /// Reads the text of an entry, of which only the group "Desktop Entry" counts. What is malformed
  /// is passed over. `localeKeys` are the languages, best first.
  static DesktopEntry parse(std::string_view text, const std::vector<std::string>& localeKeys);
};

/// The keys under which an entry may hold a text for a locale "lang_COUNTRY.ENCODING@MODIFIER",
/// best first; none for an empty locale, "C" and "POSIX".
std::vector<std::string> desktopEntryLocaleKeys(std::string_view locale);

}  // namespace platform
