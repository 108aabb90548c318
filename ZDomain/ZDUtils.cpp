#include "ZDomain/ZDUtils.h"

#include <string>

#include "ZDomain/ZDLocations.h"
#include "foundation/Value.h"
#include "logging/DDLogMacros.h"
#include "platform/FileSystem.h"
#include "platform/Workspace.h"
#include "platform/desktop/ApplicationBundle.h"

using foundation::Result;
using foundation::URL;
using platform::ApplicationBundle;
using platform::Image;
namespace FileSystem = platform::FileSystem;

namespace {

// What "%p" of the class prints.
constexpr char classObject = 0;
const void* const receiver = &classObject;

bool isFileName(std::string_view bundleId) {
  constexpr std::string_view separators("/\0", 2);
  return !bundleId.empty() && bundleId != "." && bundleId != ".." &&
         bundleId.find_first_of(separators) == bundleId.npos;
}

std::optional<URL> iconOfApplication(std::string_view bundleId) {
  const auto application =
      platform::Workspace::current().URLForApplicationWithBundleIdentifier(bundleId);
  if (!application) return std::nullopt;
  const auto bundle = ApplicationBundle::bundleWithURL(*application);
  if (!bundle) return std::nullopt;
  const auto name = foundation::stringForKey(bundle->infoDictionary(), "CFBundleIconFile");
  return name ? bundle->URLForImageResource(*name) : std::nullopt;
}

bool hasContent(std::string_view path, const foundation::Data& content) {
  const auto attributes = FileSystem::attributes(path);
  if (!attributes || attributes->type != FileSystem::FileType::regular) return false;
  if (attributes->size != content.size()) return false;
  const auto found = FileSystem::readFile(path);
  return found && *found == content;
}

/// The old file gives way in one step; what cannot give way like that is removed.
Result<void> copyFile(std::string_view from, std::string_view to) {
  const auto content = FileSystem::readFile(from);
  if (!content) {
    static_cast<void>(FileSystem::removeItem(to));
    return content.error();
  }
  if (hasContent(to, *content)) return {};
  if (FileSystem::writeFileAtomically(to, *content)) return {};
  static_cast<void>(FileSystem::removeItem(to));
  return FileSystem::writeFileAtomically(to, *content);
}

Result<void> updateCache(std::string_view bundleId, const URL& icon) {
  const auto cached = ZDUtils::cachedAppIconUrlForBundleId(bundleId);
  if (!cached) return foundation::Error("NSCocoaErrorDomain", 4, "There is no icon cache folder");
  return copyFile(icon.path(), cached->path());
}

}  // namespace

Image ZDUtils::imageForBundleId(std::string_view bundleId) {
  if (auto image = imageFromApplicationAndUpdateCacheForBundleId(bundleId)) {
    return *std::move(image);
  }
  if (auto image = imageFromProductDirectoryForBundleId(bundleId)) return *std::move(image);
  if (auto image = imageFromCacheDirectoryForBundleId(bundleId)) return *std::move(image);
  return Image::cautionImage();
}

std::optional<URL> ZDUtils::cachedAppIconUrlForBundleId(std::string_view bundleId) {
  if (!isFileName(bundleId)) return std::nullopt;
  const ZDLocations::Folder& folder = ZDLocations::appIconsCacheDirectory();
  if (!folder) return std::nullopt;
  return folder->URLByAppendingPathComponent(std::string(bundleId) + ".icns");
}

std::optional<Image> ZDUtils::imageFromApplicationAndUpdateCacheForBundleId(
    std::string_view bundleId) {
  if (!isFileName(bundleId)) return std::nullopt;
  const auto icon = iconOfApplication(bundleId);
  if (!icon) return std::nullopt;
  auto image = Image::imageWithContentsOfURL(*icon);
  if (!image) return std::nullopt;
  constexpr const char* operation = "imageFromApplicationAndUpdateCacheForBundleId:";
  if (const auto updated = updateCache(bundleId, *icon); !updated) {
    DDLogError(87, "(%@[%p] %@) Error updating of cached icon for bundle id %@: %@", THIS_FILE,
               receiver, operation, bundleId, updated.error().localizedDescription());
    DDLogError(88, "Error trace - %@[%p]: %@", THIS_FILE, receiver, operation);
  }
  return image;
}

std::optional<Image> ZDUtils::imageFromProductDirectoryForBundleId(std::string_view bundleId) {
  const auto url = isFileName(bundleId) ? ApplicationBundle::mainBundle()->URLForResource(
                                              bundleId, "icns", "AppsIcons")
                                        : std::nullopt;
  constexpr const char* operation = "imageFromProductDirectoryForBundleId:";
  // One look at the level: the second line comes with the first, never alone.
  if (const std::uint32_t level = DDLog::globalLogLevel(); (level & DDLogFlag::debug) != 0) {
    DDLog::log(true, level, DDLogFlag::debug, 0, __FILE__, __func__, 109, nullptr,
               "(%@[%p] %@) (imageFromProductDirectoryForBundleId) Filtering apps image URL:%@",
               THIS_FILE, receiver, operation, url);
    DDLog::log(true, level, DDLogFlag::debug, 0, __FILE__, __func__, 110, nullptr,
               "(%@[%p] %@) (imageFromProductDirectoryForBundleId) Filtering apps bundle ID:%@",
               THIS_FILE, receiver, operation, bundleId);
  }
  return url ? Image::imageWithContentsOfURL(*url) : std::nullopt;
}

std::optional<Image> ZDUtils::imageFromCacheDirectoryForBundleId(std::string_view bundleId) {
  const auto url = cachedAppIconUrlForBundleId(bundleId);
  return url ? Image::imageWithContentsOfURL(*url) : std::nullopt;
}
