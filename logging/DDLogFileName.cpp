#include "logging/DDLogFileName.h"

#include <algorithm>
#include <vector>

#include "foundation/DateFormatter.h"
#include "foundation/Format.h"
#include "platform/Bundle.h"

namespace {

constexpr std::string_view extension = ".log";

// A blank, ten characters of date, a blank, five of time.
constexpr std::size_t shortestMiddle = 17;

const foundation::DateFormatter& formatter() {
  static const auto& formatter =
      *new foundation::DateFormatter(DDLogFileName::datePattern, foundation::TimeZone::GMT);
  return formatter;
}

// Length in UTF-16 units: what is beyond the basic plane (four bytes) counts twice.
std::size_t lengthOf(std::string_view text) {
  std::size_t length = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) length += byte >= 0xF0 ? 2 : 1;
  }
  return length;
}

std::vector<std::string_view> components(std::string_view text) {
  std::vector<std::string_view> parts;
  for (std::size_t blank = text.find(' '); blank != std::string_view::npos;
       blank = text.find(' ')) {
    parts.push_back(text.substr(0, blank));
    text.remove_prefix(blank + 1);
  }
  parts.push_back(text);
  return parts;
}

std::string makeApplicationName() {
  platform::Bundle& bundle = platform::Bundle::current();
  if (std::optional<std::string> identifier = bundle.bundleIdentifier()) return *identifier;
  return bundle.processName();
}

}  // namespace

const std::string& DDLogFileName::applicationName() {
  static const std::string& name = *new std::string(makeApplicationName());
  return name;
}

std::string DDLogFileName::nameForDate(foundation::Date date) {
  return foundation::format("%@ %@.log", applicationName(), formatter().stringFromDate(date));
}

std::string DDLogFileName::nameForAttempt(std::string_view name, unsigned long attempt) {
  const std::size_t dot = std::min(name.rfind('.'), name.size());
  return foundation::format("%@ %lu%@", name.substr(0, dot), attempt, name.substr(dot));
}

std::optional<foundation::Date> DDLogFileName::date(std::string_view name) {
  const std::string& prefix = applicationName();
  if (name.size() < prefix.size() + extension.size()) return std::nullopt;
  if (!name.starts_with(prefix) || !name.ends_with(extension)) return std::nullopt;
  name.remove_prefix(prefix.size());
  name.remove_suffix(extension.size());
  if (lengthOf(name) < shortestMiddle) return std::nullopt;
  const std::vector<std::string_view> parts = components(name);
  if (parts.size() != 3 && parts.size() != 4) return std::nullopt;
  return formatter().dateFromString(foundation::format("%@ %@", parts[1], parts[2]));
}
