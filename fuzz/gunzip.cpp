#include <cstdint>
#include <cstdlib>

#include "ZCommons/IO/NSDataUtils.h"

// Every input gives some result, and what was compressed comes back whole.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const foundation::DataView data(bytes, length);
  const auto uncompressed = NSDataUtils::uncompressGzip(data);
  if (!uncompressed) std::abort();
  const auto compressed = NSDataUtils::compressGzip(*uncompressed);
  if (NSDataUtils::isCompressedGzip(*uncompressed)) return 0;
  if (NSDataUtils::uncompressGzip(*compressed) != *uncompressed) std::abort();
  return 0;
}
