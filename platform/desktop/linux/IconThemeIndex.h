#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What the "index.theme" of an icon theme says (freedesktop.org icon themes).
struct IconThemeIndex {
  struct Directory {
    std::string path;          ///< below the theme's folder
    std::uint64_t pixels = 0;  ///< how wide its pictures are: size times scale
  };

  std::vector<std::string> inherits;   ///< names of other themes, best first
  std::vector<Directory> directories;  ///< largest pictures first, and else as they are listed

  /// Reads an index. What is malformed, or would lead out of the theme's folder, is passed over.
  static IconThemeIndex parse(std::string_view text);
};

}  // namespace platform
