#pragma once

#include <optional>
#include <string_view>

#include "foundation/URL.h"
#include "platform/desktop/Image.h"

/// Icons of applications, by bundle identifier, for showing applications in lists.
///
/// An installed application's own icon comes first; a copy of its file is kept in the user's icon
/// cache, so that there is an icon after the application was removed. On Linux an installed
/// application is a desktop entry, and the identifier its file name without ".desktop".
///
/// An identifier that is empty, "." or "..", or that holds a slash or a zero byte, is no
/// application's: nothing is looked up or written for it. Operations on the cache raise
/// NSGenericException when its folder cannot be made (`ZDLocations::appIconsCacheDirectory`).
/// Thread safety: any thread.
///
///     const platform::Image icon = ZDUtils::imageForBundleId("org.example.Editor");
class ZDUtils {
 public:
  ZDUtils() = delete;

  /// The first icon that there is of: the installed application's (which refreshes the cache), the
  /// product's for it, the cached one, the platform's caution picture.
  static platform::Image imageForBundleId(std::string_view bundleId);

  /// Where the cached icon is, or would be: "<identifier>.icns" in the cache folder, whatever the
  /// format of the picture inside. Nothing when there is no cache folder.
  static std::optional<foundation::URL> cachedAppIconUrlForBundleId(std::string_view bundleId);

  /// The installed application's icon, whose file is then copied into the cache: a reader of the
  /// cache sees the old copy or the new one, and a copy that is the same stays. A copy that fails
  /// is logged and leaves no cached icon. Nothing, and the cache as it was, when there is no such
  /// application or it has no picture that can be read.
  static std::optional<platform::Image> imageFromApplicationAndUpdateCacheForBundleId(
      std::string_view bundleId);

  /// The icon that the product brings along: "AppsIcons/<identifier>.icns" of the running program's
  /// resources. Logs what it looks for, at debug level.
  static std::optional<platform::Image> imageFromProductDirectoryForBundleId(
      std::string_view bundleId);

  /// The cached icon; nothing when there is none or it cannot be read.
  static std::optional<platform::Image> imageFromCacheDirectoryForBundleId(
      std::string_view bundleId);
};
