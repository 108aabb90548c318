#include "platform/desktop/ICNSElement.h"

#include "platform/desktop/BigEndian.h"

namespace platform {
namespace {

using foundation::DataView;

constexpr std::size_t headerSize = 8;

constexpr std::uint32_t fourLetters(const char (&text)[5]) {
  std::uint32_t code = 0;
  for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<std::uint8_t>(text[i]);
  return code;
}

/// Takes a JPEG 2000 box off the front; one that reaches to the end says so by length 0. Lengths of
/// 64 bits are for files larger than any icon.
std::optional<ICNSElement> takeBox(DataView& data) {
  if (data.size() < headerSize) return std::nullopt;
  const std::size_t stated = bigEndian32(data, 0);
  const std::size_t length = stated == 0 ? data.size() : stated;
  if (length < headerSize || length > data.size()) return std::nullopt;
  const ICNSElement box{bigEndian32(data, 4), data.subspan(headerSize, length - headerSize)};
  data = data.subspan(length);
  return box;
}

/// Whether the header box makes other channels of those in the codestream.
bool hasPalette(DataView header) {
  while (const auto box = takeBox(header)) {
    if (box->type == fourLetters("pclr") || box->type == fourLetters("cmap")) return true;
  }
  return !header.empty();  // what does not fit may be one
}

/// Reads the size segment, the first of a codestream.
std::optional<JP2Size> sizeOfCodestream(DataView data) {
  constexpr std::uint32_t startAndSize = 0xff4fff51;
  constexpr std::size_t componentCount = 4, fixedSize = 42;
  if (data.size() < fixedSize + 3 * componentCount) return std::nullopt;
  if (bigEndian32(data, 0) != startAndSize) return std::nullopt;
  const bool startsAtOrigin = bigEndian32(data, 16) == 0 && bigEndian32(data, 20) == 0;
  if (!startsAtOrigin || bigEndian16(data, 40) != componentCount) return std::nullopt;
  for (std::size_t i = 0; i < componentCount; ++i) {
    const DataView component = data.subspan(fixedSize + 3 * i, 3);
    const bool isPlain = component[0] == 7 && component[1] == 1 && component[2] == 1;
    if (!isPlain) return std::nullopt;
  }
  return JP2Size{bigEndian32(data, 8), bigEndian32(data, 12)};
}

}  // namespace

std::optional<std::vector<ICNSElement>> elementsOfICNS(DataView file) {
  if (file.size() < headerSize || bigEndian32(file, 0) != fourLetters("icns")) return std::nullopt;
  const std::size_t size = bigEndian32(file, 4);
  if (size < headerSize || size > file.size()) return std::nullopt;
  DataView rest = file.subspan(headerSize, size - headerSize);
  std::vector<ICNSElement> elements;
  while (!rest.empty()) {
    if (rest.size() < headerSize) return std::nullopt;
    const std::size_t length = bigEndian32(rest, 4);
    if (length < headerSize || length > rest.size()) return std::nullopt;
    elements.push_back({bigEndian32(rest, 0), rest.subspan(headerSize, length - headerSize)});
    rest = rest.subspan(length);
  }
  return elements;
}

bool isPackedRGB(DataView content, std::size_t pixelCount) {
  // Decoders pass over four zero bytes in front.
  if (content.size() >= 4 && bigEndian32(content, 0) == 0) content = content.subspan(4);
  for (int channel = 0; channel < 3; ++channel) {
    for (std::size_t pixels = 0; pixels < pixelCount;) {
      if (content.empty()) return false;
      const std::uint8_t code = content[0];
      const bool isRun = code >= 0x80;
      const std::size_t count = isRun ? code - 125u : code + 1u;
      const std::size_t length = 1 + (isRun ? 1 : count);
      if (count > pixelCount - pixels || length > content.size()) return false;
      pixels += count;
      content = content.subspan(length);
    }
  }
  return true;
}

std::optional<JP2Size> sizeOfJP2(DataView file) {
  constexpr std::uint32_t signature = fourLetters("jP  ");
  auto box = takeBox(file);
  if (!box || box->type != signature) return std::nullopt;
  while ((box = takeBox(file))) {
    if (box->type == fourLetters("jp2h") && hasPalette(box->content)) return std::nullopt;
    if (box->type == fourLetters("jp2c")) return sizeOfCodestream(box->content);
  }
  return std::nullopt;
}

}  // namespace platform
