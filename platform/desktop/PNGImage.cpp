#include "platform/desktop/PNGImage.h"

#include <algorithm>

#include <png.h>

#include "platform/desktop/BigEndian.h"

namespace platform {
namespace {

using foundation::DataView;

constexpr std::uint8_t signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};

/// Whether the chunks are there up to the end chunk. The library stops at the last row, and would
/// not miss what should follow.
bool isComplete(DataView data) {
  constexpr std::size_t overhead = 12;  // length, type, checksum
  constexpr std::uint32_t end = 0x49454e44;
  data = data.subspan(std::size(signature));
  while (data.size() >= overhead) {
    const std::size_t length = bigEndian32(data, 0);
    if (data.size() - overhead < length) return false;
    if (bigEndian32(data, 4) == end) return true;
    data = data.subspan(overhead + length);
  }
  return false;
}

/// The library's reader, which keeps its errors to itself: it returns 0.
class Reader {
 public:
  Reader() { image_.version = PNG_IMAGE_VERSION; }
  ~Reader() { png_image_free(&image_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  std::optional<Image> read(DataView data) {
    if (!png_image_begin_read_from_memory(&image_, data.data(), data.size())) return std::nullopt;
    if (std::max(image_.width, image_.height) > Image::maximumSide) return std::nullopt;
    image_.format = PNG_FORMAT_RGBA;
    Image image{image_.width, image_.height, foundation::Data(PNG_IMAGE_SIZE(image_))};
    if (!png_image_finish_read(&image_, nullptr, image.pixels.data(), 0, nullptr)) {
      return std::nullopt;
    }
    return image;
  }

 private:
  png_image image_{};
};

}  // namespace

bool isPNG(DataView data) {
  return data.size() >= std::size(signature) &&
         std::equal(std::begin(signature), std::end(signature), data.begin());
}

std::optional<Image> imageFromPNG(DataView data) {
  if (!isPNG(data) || !isComplete(data)) return std::nullopt;
  return Reader().read(data);
}

}  // namespace platform
