#include "platform/desktop/IconTheme.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/desktop/linux/ThemedIcons.h"
#include "platform/linux/DataFolders.h"
#include "platform/linux/KeyFile.h"
#include "platform/linux/SmallFile.h"
#include "platform/posix/HomeFolder.h"

namespace platform {
namespace {

/// Adds the theme that a file of GTK settings names.
void addTheme(std::vector<std::string>& themes, const std::string& settingsPath) {
  constexpr std::size_t settingsLimit = 64 * 1024;
  const auto text = readSmallFile(settingsPath, settingsLimit);
  if (!text) return;
  KeyFileReader keys(*text);
  while (keys.next()) {
    if (keys.group() != "Settings" || keys.key() != "gtk-icon-theme-name") continue;
    if (keys.value().find('/') == std::string_view::npos) themes.emplace_back(keys.value());
  }
}

std::vector<std::string> themesInForce(const std::string& home) {
  std::vector<std::string> folders = trustedPathList("XDG_CONFIG_HOME", home + "/.config");
  folders.emplace_back("/etc");
  std::vector<std::string> themes;
  for (const std::string& folder : folders) {
    for (const char* file : {"/gtk-4.0/settings.ini", "/gtk-3.0/settings.ini"}) {
      addTheme(themes, folder + file);
    }
  }
  for (const char* theme : {"default", "Adwaita"}) themes.emplace_back(theme);
  return themes;
}

ThemedIcons::Places usualPlaces() {
  const auto found = homeFolder();
  const std::string home = found ? *found : "";
  ThemedIcons::Places places{{home + "/.icons"}, {"/usr/share/pixmaps"}, themesInForce(home)};
  for (std::string& folder : dataFolders()) {
    places.themeFolders.push_back(std::move(folder += "/icons"));
  }
  return places;
}

}  // namespace

IconTheme& IconTheme::production() {
  static IconTheme& theme = *new ThemedIcons(usualPlaces());
  return theme;
}

}  // namespace platform
