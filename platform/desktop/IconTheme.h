#pragma once

#include <optional>
#include <string_view>

#include "foundation/URL.h"
#include "platform/Service.h"

namespace platform {

/// The pictures that the desktop has for names, such as those of applications and stock pictures.
///
/// On Linux these are the PNG files of the icon themes (freedesktop.org icon themes).
/// The theme is the one of the user's or the machine's GTK 3 settings, "default", and "Adwaita",
/// each with the themes it inherits; then "hicolor". Searched are "icons" in the folders of data
/// that desktop programs share and ".icons" in the home folder, then "/usr/share/pixmaps".
/// Variables of the environment count for none but an ordinary user's ordinary program. Thread
/// safety: any thread.
class IconTheme : public Service<IconTheme> {
 public:
  static IconTheme& production();

  /// The file of the picture called `name`: the largest in the first theme that has one, or else
  /// one that stands outside the themes. An absolute path is told as it is when a file is there;
  /// other names with a slash have no picture. An extension of a picture at the end is passed over.
  virtual std::optional<foundation::URL> URLForIcon(std::string_view name) = 0;
};

}  // namespace platform
