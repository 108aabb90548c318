#pragma once

#include <string>
#include <vector>

#include "platform/desktop/IconTheme.h"

namespace platform {

/// The icon themes in given places, read anew for every name.
class ThemedIcons final : public IconTheme {
 public:
  /// Where to look.
  struct Places {
    std::vector<std::string>
        themeFolders;  ///< folders of themes; pictures may stand in them as well
    std::vector<std::string> otherFolders;  ///< folders of pictures outside themes
    std::vector<std::string> themes;        ///< names of themes, best first; "hicolor" is the last
  };

  explicit ThemedIcons(Places places);

  std::optional<foundation::URL> URLForIcon(std::string_view name) override;

 private:
  const Places places_;
};

}  // namespace platform
