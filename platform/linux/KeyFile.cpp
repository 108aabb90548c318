#include "platform/linux/KeyFile.h"

#include <algorithm>

namespace platform {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return trimmed(line);
}

}  // namespace

bool KeyFileReader::next() {
  while (!rest_.empty()) {
    const std::string_view line = takeLine(rest_);
    if (line.starts_with('[')) {
      group_ = line.ends_with(']') ? line.substr(1, line.size() - 2) : std::string_view();
      continue;
    }
    const std::size_t sign = line.find('=');
    if (group_.empty() || line.starts_with('#') || sign == std::string_view::npos) continue;
    key_ = trimmed(line.substr(0, sign));
    value_ = trimmed(line.substr(sign + 1));
    return true;
  }
  return false;
}

}  // namespace platform
