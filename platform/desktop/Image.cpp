#include "platform/desktop/Image.h"

#include <string>

#include "platform/desktop/ICNSImage.h"
#include "platform/desktop/IconTheme.h"
#include "platform/desktop/PNGImage.h"
#include "platform/desktop/WarningTriangle.h"
#include "platform/linux/SmallFile.h"

namespace platform {

std::optional<Image> Image::imageWithData(foundation::DataView data) {
  return isPNG(data) ? imageFromPNG(data) : imageFromICNS(data);
}

std::optional<Image> Image::imageWithContentsOfURL(const foundation::URL& url) {
  if (!url.isFileURL()) return std::nullopt;
  const auto content = readSmallFile(std::string(url.path()), maximumFileSize);
  if (!content) return std::nullopt;
  return imageWithData(foundation::dataOf(*content));
}

Image Image::cautionImage() {
  const auto url = IconTheme::current().URLForIcon("dialog-warning");
  auto image = url ? imageWithContentsOfURL(*url) : std::nullopt;
  return image ? *std::move(image) : warningTriangle();
}

}  // namespace platform
