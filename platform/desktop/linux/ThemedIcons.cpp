#include "platform/desktop/linux/ThemedIcons.h"

#include <algorithm>
#include <utility>

#include "platform/FileSystem.h"
#include "platform/desktop/linux/IconThemeIndex.h"
#include "platform/linux/SmallFile.h"
#include "platform/posix/RegularFile.h"

namespace platform {
namespace {

using foundation::URL;

constexpr std::size_t indexLimit = 1024 * 1024;

std::string withoutExtension(std::string_view name) {
  for (const std::string_view extension : {".png", ".svg", ".xpm"}) {
    if (name.ends_with(extension)) name.remove_suffix(extension.size());
  }
  return std::string(name);
}

std::string joined(std::string folder, std::string_view path) { return (folder += '/') += path; }

/// A search for one file name through themes, each once.
class Search {
 public:
  Search(const ThemedIcons::Places& places, std::string file)
      : places_(places), file_(std::move(file)) {}

  /// The picture in a theme or in one of those it inherits, before others that wait.
  std::optional<std::string> inThemes(std::vector<std::string> waiting) {
    std::reverse(waiting.begin(), waiting.end());
    while (!waiting.empty()) {
      const std::string theme = std::move(waiting.back());
      waiting.pop_back();
      if (!isNew(theme)) continue;
      const std::vector<std::string> folders = foldersOf(theme);
      const IconThemeIndex index = readIndex(folders);
      if (auto found = inTheme(folders, index)) return found;
      waiting.insert(waiting.end(), index.inherits.rbegin(), index.inherits.rend());
    }
    return std::nullopt;
  }

  std::optional<std::string> inFolders(const std::vector<std::string>& folders) const {
    for (const std::string& folder : folders) {
      std::string path = joined(folder, file_);
      if (isRegularFile(path)) return path;
    }
    return std::nullopt;
  }

 private:
  bool isNew(const std::string& theme) {
    if (std::find(seen_.begin(), seen_.end(), theme) != seen_.end()) return false;
    seen_.push_back(theme);
    return true;
  }

  /// A theme may be spread over several folders.
  std::vector<std::string> foldersOf(const std::string& theme) const {
    std::vector<std::string> folders;
    for (const std::string& place : places_.themeFolders) {
      std::string folder = joined(place, theme);
      if (FileSystem::exists(folder)) folders.push_back(std::move(folder));
    }
    return folders;
  }

  /// The first index that is found is the theme's.
  static IconThemeIndex readIndex(const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
      const auto text = readSmallFile(joined(folder, "index.theme"), indexLimit);
      if (text) return IconThemeIndex::parse(*text);
    }
    return {};
  }

  std::optional<std::string> inTheme(const std::vector<std::string>& folders,
                                     const IconThemeIndex& index) const {
    for (const IconThemeIndex::Directory& directory : index.directories) {
      for (const std::string& folder : folders) {
        std::string path = joined(joined(folder, directory.path), file_);
        if (isRegularFile(path)) return path;
      }
    }
    return std::nullopt;
  }

  const ThemedIcons::Places& places_;
  const std::string file_;
  std::vector<std::string> seen_;
};

}  // namespace

ThemedIcons::ThemedIcons(Places places) : places_(std::move(places)) {}

std::optional<URL> ThemedIcons::URLForIcon(std::string_view name) {
  if (name.empty() || name.find('\0') != name.npos) return std::nullopt;
  if (name.starts_with('/')) {
    return isRegularFile(std::string(name)) ? std::optional(URL::fileURLWithPath(name))
                                            : std::nullopt;
  }
  if (name.find('/') != name.npos) return std::nullopt;
  Search search(places_, withoutExtension(name) + ".png");
  auto path = search.inThemes(places_.themes);
  if (!path) path = search.inThemes({"hicolor"});
  if (!path) path = search.inFolders(places_.themeFolders);
  if (!path) path = search.inFolders(places_.otherFolders);
  if (!path) return std::nullopt;
  return URL::fileURLWithPath(*path);
}

}  // namespace platform
