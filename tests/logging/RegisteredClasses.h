#pragma once

#include "logging/DDRegisteredClass.h"

namespace logging_test {

/// Comes from a static library, and nothing but its registration refers to it.
struct Downloader {
  static std::uint32_t ddLogLevel();
  static void ddSetLogLevel(std::uint32_t level);
  DD_REGISTER_CLASS(Downloader);
};

}  // namespace logging_test
