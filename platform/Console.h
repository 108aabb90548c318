#pragma once

#include <string_view>

#include "foundation/Format.h"
#include "platform/Service.h"

namespace platform {

/// The plain system log: one line a call.
///
/// On Linux a line goes to standard error in one write, with local time, process name and process
/// id in front: "2024-03-09 14:05:07.123 remove_cert[4711] text". Never raises; a line that cannot
/// be written is lost. Thread safety: any thread.
class Console : public Service<Console> {
 public:
  static Console& production();

  /// Writes one line; `text` comes without a line end.
  virtual void write(std::string_view text) = 0;

  /// Formats as `foundation::format` does, and writes the line to the console in force.
  template <class... Arguments>
  static void log(std::string_view format, const Arguments&... arguments) {
    current().write(foundation::format(format, arguments...));
  }
};

}  // namespace platform
