#include "foundation/PropertyValue.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include "foundation/StringEncoding.h"
#include "foundation/Unicode.h"

namespace foundation {
namespace {

// `text` without leading white space.
std::string_view token(std::string_view text) {
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    if (!isWhitespaceOrNewline(static_cast<char32_t>(character.codePoint))) break;
    text.remove_prefix(character.length);
  }
  return text;
}

}  // namespace

double doubleValue(std::string_view text) {
  text = token(text);
  const bool plus = text.starts_with('+') && !text.starts_with("+-");
  text.remove_prefix(plus ? 1 : 0);
  double value = 0;
  const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (status != std::errc::result_out_of_range) return value;
  const std::string_view number(text.data(), static_cast<std::size_t>(end - text.data()));
  const bool tiny = number.find("e-") != number.npos || number.find("E-") != number.npos;
  const double limit = tiny ? 0 : std::numeric_limits<double>::infinity();
  return number.starts_with('-') ? -limit : limit;
}

bool boolValue(std::string_view text) {
  text = token(text);
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != text.npos;
}

}  // namespace foundation
