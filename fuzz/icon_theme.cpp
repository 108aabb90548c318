#include "foundation/Data.h"
#include "platform/desktop/linux/IconThemeIndex.h"

// Whatever a theme's index says, its directories stay in the theme and come largest first.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto index = platform::IconThemeIndex::parse(foundation::textOf({data, size}));
  std::uint64_t pixels = UINT64_MAX;
  for (const auto& directory : index.directories) {
    const bool leadsOut =
        directory.path.starts_with('/') || directory.path.find("..") != std::string::npos;
    if (leadsOut || directory.pixels > pixels) __builtin_trap();
    pixels = directory.pixels;
  }
  return 0;
}
