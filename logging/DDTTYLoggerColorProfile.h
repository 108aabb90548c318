#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "logging/DDTTYColor.h"

/// The colours of the messages of some flags, with the escape sequences for them ready made.
/// Immutable.
class DDTTYLoggerColorProfile {
 public:
  /// The context that stands for every one.
  static constexpr std::int32_t anyContext = INT32_MAX;

  /// initWithForegroundColor:backgroundColor:flag:context:
  ///
  /// Nothing for a colour leaves the terminal's. All sequences are empty where `table` is.
  DDTTYLoggerColorProfile(std::optional<DDColor> foreground, std::optional<DDColor> background,
                          std::uint32_t mask, std::int32_t context,
                          const DDTTYColorTable& table = DDTTYColorTable::ofTerminal());

  std::uint32_t mask() const { return mask_; }
  std::int32_t context() const { return context_; }

  /// What goes in front of a line, and behind it.
  const std::string& fgCode() const { return fgCode_; }
  const std::string& bgCode() const { return bgCode_; }
  const std::string& resetCode() const { return resetCode_; }

 private:
  std::uint32_t mask_;
  std::int32_t context_;
  std::string fgCode_;
  std::string bgCode_;
  std::string resetCode_;
};
