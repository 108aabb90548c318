#include "tests/logging/RegisteredClasses.h"

static std::uint32_t downloaderLevel = 3;

std::uint32_t logging_test::Downloader::ddLogLevel() { return downloaderLevel; }
void logging_test::Downloader::ddSetLogLevel(std::uint32_t level) { downloaderLevel = level; }
