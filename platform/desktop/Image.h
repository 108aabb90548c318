#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "foundation/Data.h"
#include "foundation/URL.h"

namespace platform {

/// A picture as pixels.
///
/// Pictures are read from PNG (ISO/IEC 15948) and from Apple icon images (".icns"), told apart by
/// their content, not by a name. Of an icon file it is the largest of its pictures that can be
/// read. What is damaged, cut short, of another format, or beyond the limits below is no picture.
///
///     if (const auto icon = Image::imageWithContentsOfURL(url)) show(icon->pixels, icon->width);
struct Image {
  /// The most pixels that a picture may be wide, and high.
  static constexpr std::uint32_t maximumSide = 4096;
  /// The most bytes that a picture's file may have.
  static constexpr std::size_t maximumFileSize = std::size_t{32} << 20;

  std::uint32_t width = 0;
  std::uint32_t height = 0;
  /// Four bytes a pixel, red, green, blue (sRGB) and alpha, not multiplied by it; rows from the top
  /// without a gap.
  foundation::Data pixels;

  /// The picture in the bytes of a file.
  static std::optional<Image> imageWithData(foundation::DataView data);

  /// The picture in a regular file, a link to one included; nothing when it cannot be read.
  static std::optional<Image> imageWithContentsOfURL(const foundation::URL& url);

  /// The platform's stock picture for "caution": the icon theme's "dialog-warning", or a warning
  /// triangle that comes with the library.
  static Image cautionImage();

  friend bool operator==(const Image&, const Image&) = default;
};

}  // namespace platform
