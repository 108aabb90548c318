#pragma once

#include <cstdint>

/// What a message is: it carries exactly one flag.
struct DDLogFlag {
  static constexpr std::uint32_t error = 1;
  static constexpr std::uint32_t warning = 2;
  static constexpr std::uint32_t info = 4;
  static constexpr std::uint32_t debug = 8;
  static constexpr std::uint32_t verbose = 16;
};

/// Which messages are wanted: a mask of flags. Each level admits its own flag and all before it.
struct DDLogLevel {
  static constexpr std::uint32_t error = 1;
  static constexpr std::uint32_t warning = 3;
  static constexpr std::uint32_t info = 7;
  static constexpr std::uint32_t debug = 15;
  static constexpr std::uint32_t verbose = 31;
};
