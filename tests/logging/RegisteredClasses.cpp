#include "tests/logging/RegisteredClasses.h"

namespace logging_test {
namespace {
std::uint32_t downloaderLevel = 3;
}

std::uint32_t Downloader::ddLogLevel() { return downloaderLevel; }
void Downloader::ddSetLogLevel(std::uint32_t level) { downloaderLevel = level; }

}  // namespace logging_test
