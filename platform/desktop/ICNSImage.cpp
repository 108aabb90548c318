#include "platform/desktop/ICNSImage.h"

#include <algorithm>
#include <memory>
#include <vector>

extern "C" {
#include <icns.h>
}

#include "platform/desktop/BigEndian.h"
#include "platform/desktop/ICNSElement.h"
#include "platform/desktop/PNGImage.h"

namespace platform {
namespace {

using foundation::Data;
using foundation::DataView;
using Elements = std::vector<ICNSElement>;

// Icons are no larger, and a file has few pictures; the rest would be there to cost time.
constexpr std::uint32_t maximumSide = 1024;
constexpr std::size_t maximumAttempts = 8;

/// The library's picture.
class Decoded {
 public:
  Decoded() = default;
  ~Decoded() { icns_free_image(&image_); }
  Decoded(const Decoded&) = delete;
  Decoded& operator=(const Decoded&) = delete;

  icns_image_t* out() { return &image_; }

  std::optional<Image> image() const {
    const std::uint64_t size = std::uint64_t{4} * image_.imageWidth * image_.imageHeight;
    const bool isRGBA = image_.imageData && image_.imageChannels == 4 &&
                        image_.imagePixelDepth == 8 && image_.imageDataSize >= size;
    if (!isRGBA) return std::nullopt;
    return Image{image_.imageWidth, image_.imageHeight,
                 Data(image_.imageData, image_.imageData + size)};
  }

 private:
  icns_image_t image_{};
};

using Family = std::unique_ptr<icns_family_t, decltype(&free)>;

void appendBigEndian(Data& data, std::uint32_t number) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    data.push_back(static_cast<std::uint8_t>(number >> shift));
  }
}

void appendElement(Data& data, std::uint32_t type, DataView content) {
  appendBigEndian(data, type);
  appendBigEndian(data, static_cast<std::uint32_t>(8 + content.size()));
  foundation::append(data, content);
}

/// A family of these elements alone, as the library keeps it.
Family familyOf(const Elements& elements) {
  Data content;
  for (const ICNSElement& element : elements) appendElement(content, element.type, element.content);
  Data data;
  appendElement(data, ICNS_FAMILY_TYPE, content);
  icns_family_t* family = nullptr;
  icns_import_family_data(static_cast<icns_size_t>(data.size()), data.data(), &family);
  return Family(family, &free);
}

/// A picture of the file that may be read.
struct Candidate {
  std::uint32_t width;
  std::uint32_t height;
  std::uint32_t depth;  ///< bits a pixel
  ICNSElement element;
  std::optional<Image> (*read)(const ICNSElement& element, const Elements& all);

  bool isLargerThan(const Candidate& other) const {
    const std::uint64_t area = std::uint64_t{width} * height;
    const std::uint64_t otherArea = std::uint64_t{other.width} * other.height;
    return area != otherArea ? area > otherArea : depth > other.depth;
  }
};

std::optional<Image> readPNG(const ICNSElement& element, const Elements&) {
  return imageFromPNG(element.content);
}

std::optional<Image> readJP2(const ICNSElement& element, const Elements&) {
  Data copy(element.content.begin(), element.content.end());
  Decoded decoded;
  const int status =
      icns_jp2_to_image(static_cast<icns_size_t>(copy.size()), copy.data(), decoded.out());
  return status == ICNS_STATUS_OK ? decoded.image() : std::nullopt;
}

/// How many bytes an element's content has unless it is packed; one of a picture and its mask has
/// both behind one another.
std::size_t contentSize(const icns_icon_info_t& info) {
  return info.iconRawDataSize * (info.isImage && info.isMask ? 2 : 1);
}

/// Whether the content has just the bytes that the library takes from it.
bool hasPixels(const ICNSElement& element, const icns_icon_info_t& info) {
  if (element.content.size() == contentSize(info)) return true;
  const bool mayBePacked = info.iconBitDepth == 32;
  return mayBePacked && element.content.size() < info.iconRawDataSize &&
         isPackedRGB(element.content, std::size_t{info.iconWidth} * info.iconHeight);
}

std::optional<Image> readPixels(const ICNSElement& element, const Elements& all) {
  const icns_type_t maskType = icns_get_mask_type_for_icon_type(element.type);
  const std::size_t maskSize = contentSize(icns_get_image_info_for_type(maskType));
  const Data opaque(maskSize, 0xff);
  Elements family{element};
  if (maskType != element.type) {
    const auto mask = std::find_if(all.begin(), all.end(), [&](const ICNSElement& other) {
      return other.type == maskType && other.content.size() == maskSize;
    });
    family.push_back({maskType, mask == all.end() ? DataView(opaque) : mask->content});
  }
  const Family imported = familyOf(family);
  Decoded decoded;
  if (!imported || icns_get_image32_with_mask_from_family(imported.get(), element.type,
                                                          decoded.out()) != ICNS_STATUS_OK) {
    return std::nullopt;
  }
  return decoded.image();
}

std::optional<Candidate> candidate(const ICNSElement& element) {
  constexpr std::size_t headerOfPNG = 24;
  if (isPNG(element.content) && element.content.size() >= headerOfPNG) {
    return Candidate{bigEndian32(element.content, 16), bigEndian32(element.content, 20), 32,
                     element, readPNG};
  }
  if (const auto size = sizeOfJP2(element.content)) {
    return Candidate{size->width, size->height, 32, element, readJP2};
  }
  const icns_icon_info_t info = icns_get_image_info_for_type(element.type);
  const bool hasMask = icns_get_mask_type_for_icon_type(element.type) != ICNS_NULL_MASK;
  if (!info.isImage || !hasMask || !hasPixels(element, info)) return std::nullopt;
  return Candidate{info.iconWidth, info.iconHeight, info.iconBitDepth, element, readPixels};
}

}  // namespace

std::optional<Image> imageFromICNS(DataView data) {
  [[maybe_unused]] static const bool isSilent = (icns_set_print_errors(false), true);
  const auto elements = elementsOfICNS(data);
  if (!elements) return std::nullopt;
  std::vector<Candidate> candidates;
  for (const ICNSElement& element : *elements) {
    const auto found = candidate(element);
    if (found && std::max(found->width, found->height) <= maximumSide) {
      candidates.push_back(*found);
    }
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.isLargerThan(b); });
  if (candidates.size() > maximumAttempts) candidates.resize(maximumAttempts);
  for (const Candidate& largest : candidates) {
    if (auto image = largest.read(largest.element, *elements)) return image;
  }
  return std::nullopt;
}

}  // namespace platform
