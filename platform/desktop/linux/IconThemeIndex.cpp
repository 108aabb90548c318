#include "platform/desktop/linux/IconThemeIndex.h"

#include <algorithm>
#include <map>

#include "foundation/Number.h"
#include "platform/linux/KeyFile.h"

namespace platform {
namespace {

/// The items of a list with commas between.
std::vector<std::string> items(std::string_view list) {
  constexpr std::string_view blanks = " \t";
  std::vector<std::string> result;
  while (!list.empty()) {
    std::string_view item = list.substr(0, list.find(','));
    list.remove_prefix(std::min(item.size() + 1, list.size()));
    item.remove_prefix(std::min(item.find_first_not_of(blanks), item.size()));
    item = item.substr(0, item.find_last_not_of(blanks) + 1);
    if (!item.empty()) result.emplace_back(item);
  }
  return result;
}

bool isThemeName(const std::string& name) {
  return name.find('/') == name.npos && name != "." && name != "..";
}

bool staysInTheme(const std::string& path) {
  return !path.starts_with('/') && path.find("..") == path.npos;
}

/// A size or scale: 1 to 65535, or 0 for everything else.
std::uint64_t measure(std::string_view text) {
  const std::int64_t number = foundation::integerValue(text);
  return number >= 1 && number <= 65535 ? static_cast<std::uint64_t>(number) : 0;
}

struct Measures {
  std::uint64_t size = 0;
  std::uint64_t scale = 1;
};

}  // namespace

IconThemeIndex IconThemeIndex::parse(std::string_view text) {
  IconThemeIndex index;
  std::vector<std::string> paths;
  std::map<std::string, Measures, std::less<>> groups;
  KeyFileReader keys(text);
  while (keys.next()) {
    if (keys.group() != "Icon Theme") {
      if (keys.key() == "Size") groups[std::string(keys.group())].size = measure(keys.value());
      if (keys.key() == "Scale") groups[std::string(keys.group())].scale = measure(keys.value());
    } else if (keys.key() == "Inherits") {
      index.inherits = items(keys.value());
    } else if (keys.key() == "Directories" || keys.key() == "ScaledDirectories") {
      for (std::string& path : items(keys.value())) paths.push_back(std::move(path));
    }
  }
  std::erase_if(index.inherits, [](const std::string& name) { return !isThemeName(name); });
  for (std::string& path : paths) {
    const auto group = groups.find(path);
    if (group == groups.end() || !staysInTheme(path)) continue;
    const std::uint64_t pixels = group->second.size * group->second.scale;
    if (pixels > 0) index.directories.push_back({std::move(path), pixels});
  }
  std::stable_sort(index.directories.begin(), index.directories.end(),
                   [](const Directory& a, const Directory& b) { return a.pixels > b.pixels; });
  return index;
}

}  // namespace platform
