#include "platform/desktop/BundleFolder.h"

#include "foundation/Format.h"
#include "foundation/archive/PropertyList.h"
#include "platform/linux/SmallFile.h"
#include "platform/posix/RegularFile.h"

namespace platform {
namespace {

using foundation::Dictionary;
using foundation::URL;

Dictionary readList(const std::string& path) {
  constexpr std::size_t listLimit = 1024 * 1024;
  const auto content = readSmallFile(path, listLimit);
  if (!content) return {};
  const auto list = foundation::PropertyList::propertyListWithData(foundation::dataOf(*content));
  const Dictionary* const dictionary = list ? list->as<Dictionary>() : nullptr;
  return dictionary ? *dictionary : Dictionary();
}

/// Whether a path stays below the folder that it is put behind.
bool staysInside(std::string_view path) {
  if (path.empty() || path.starts_with('/') || path.find('\0') != path.npos) return false;
  const std::string between = foundation::format("/%@/", path);
  return between.find("/../") == between.npos;
}

}  // namespace

BundleFolder::BundleFolder(const std::string& listPath, std::vector<std::string> resourceFolders)
    : ApplicationBundle(readList(listPath)), resourceFolders_(std::move(resourceFolders)) {}

std::optional<URL> BundleFolder::URLForResource(std::string_view name, std::string_view extension,
                                                std::string_view subdirectory) const {
  std::string path(subdirectory);
  if (!path.empty()) path += '/';
  path += name;
  if (!extension.empty()) (path += '.') += extension;
  if (name.empty() || !staysInside(path)) return std::nullopt;
  for (const std::string& folder : resourceFolders_) {
    const std::string file = folder + "/" + path;
    if (isRegularFile(file)) return URL::fileURLWithPath(file);
  }
  return std::nullopt;
}

std::optional<URL> BundleFolder::URLForImageResource(std::string_view name) const {
  for (const char* extension : {"", "icns", "png"}) {
    if (auto url = URLForResource(name, extension, "")) return url;
  }
  return std::nullopt;
}

}  // namespace platform
