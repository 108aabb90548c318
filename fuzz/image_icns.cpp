#include "platform/desktop/ICNSElement.h"
#include "platform/desktop/ICNSImage.h"

// Damaged icon files are no pictures; what is one has all its pixels.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto image = platform::imageFromICNS({data, size});
  if (image && image->pixels.size() != std::size_t{4} * image->width * image->height) {
    __builtin_trap();
  }
  platform::isPackedRGB({data, size}, 256);
  platform::sizeOfJP2({data, size});
  return 0;
}
