#pragma once

#include <string>
#include <string_view>

#include <png.h>

#include "platform/FileSystem.h"
#include "platform/desktop/Image.h"

namespace support {

/// A picture whose pixels differ by place.
inline platform::Image picture(std::uint32_t width, std::uint32_t height) {
  platform::Image image{width, height, {}};
  for (std::uint32_t i = 0; i < 4 * width * height; ++i) {
    image.pixels.push_back(static_cast<std::uint8_t>(7 * i + i / 251));
  }
  return image;
}

/// That picture as a PNG file.
inline std::string PNG(std::uint32_t width, std::uint32_t height) {
  png_image header{nullptr, PNG_IMAGE_VERSION, width, height, PNG_FORMAT_RGBA, 0, 0, 0, {}};
  std::string file(PNG_IMAGE_PNG_SIZE_MAX(header), '\0');
  png_alloc_size_t size = file.size();
  png_image_write_to_memory(&header, file.data(), &size, 0, picture(width, height).pixels.data(), 0,
                            nullptr);
  return file.substr(0, size);
}

/// An icon file, or an element of one: four letters, the length, the content.
inline std::string element(std::string_view type, const std::string& content) {
  std::string result(type);
  for (const int shift : {24, 16, 8, 0}) {
    result += static_cast<char>((content.size() + 8) >> shift);
  }
  return result + content;
}

/// Writes a file with the folders above it.
inline void writeFile(const std::string& path, std::string_view content) {
  const auto folder = platform::FileSystem::createDirectory(path.substr(0, path.rfind('/')));
  const foundation::DataView data = foundation::dataOf(content);
  if (!folder || !platform::FileSystem::writeFileAtomically(path, data)) throw path;
}

}  // namespace support
