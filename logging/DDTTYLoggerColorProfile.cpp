#include "logging/DDTTYLoggerColorProfile.h"

DDTTYLoggerColorProfile::DDTTYLoggerColorProfile(std::optional<DDColor> foreground,
                                                 std::optional<DDColor> background,
                                                 std::uint32_t mask, std::int32_t context,
                                                 const DDTTYColorTable& table)
    : mask_(mask), context_(context) {
  if (table.isEmpty()) return;
  if (foreground) {
    fgCode_ = "\033[" + table.foregroundCode(table.codeIndexForColor(*foreground));
  }
  if (background) {
    bgCode_ = "\033[" + table.backgroundCode(table.codeIndexForColor(*background));
  }
  resetCode_ = "\033[0m";
}
