#include "platform/desktop/PNGImage.h"

// Damaged pictures are no pictures; what is one has all its pixels.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto image = platform::imageFromPNG({data, size});
  if (image && image->pixels.size() != std::size_t{4} * image->width * image->height) {
    __builtin_trap();
  }
  return 0;
}
