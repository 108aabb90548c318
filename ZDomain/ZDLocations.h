#pragma once

#include <optional>

#include "foundation/URL.h"
#include "platform/Folders.h"

/// Where the product keeps its data on disk.
///
/// A folder is made on the first request, with those above it, and remembered for the life of the
/// process: it is not made again when somebody removes it. The references stay good for ever. A
/// request that failed is tried again by the next one, and leaves an error line in the log.
///
/// Thread safety: any thread. A folder that is known is told without waiting; others are made under
/// one lock, so each is made once. The exceptions told below are fatal: they leave that lock held,
/// and every other thread that asks for a folder not known yet waits for good.
class ZDLocations {
 public:
  ZDLocations() = delete;

  using Folder = std::optional<foundation::URL>;

  /// The product's folder in the user's Application Support folder, named by the running program's
  /// bundle identifier, or else by `ProductBundleIdentifier`. Nothing when it cannot be made.
  /// Raises NSGenericException when there is no Application Support folder, as does every getter
  /// of a folder inside.
  static const Folder& productDataDirectory();

  /// As `productDataDirectory`, in the machine's Application Support folder.
  static const Folder& sharedProductDataDirectory();

  /// productDataDirectoryForDomain:
  ///
  /// As the two above, made and told anew on each call.
  static Folder productDataDirectoryForDomain(platform::SearchPathDomain domain);

  /// "ZarvoCore" in the shared product folder; nothing when it cannot be made.
  static const Folder& sharedZarvoCoreDirectory();

  /// "CertCache" in the shared core folder, open to every user (permissions 0777, whatever the
  /// umask); nothing when it cannot be made.
  static const Folder& zarvoCoreCertCacheDirectory();

  /// "AppIcons" in the user's product folder; nothing when that folder cannot be made. Raises
  /// NSGenericException ("Cannot create app icons cache directory: …") when only it cannot.
  static const Folder& appIconsCacheDirectory();

  /// "ZarvoCore" in the user's product folder; nothing when that folder cannot be made. Raises
  /// NSGenericException ("Cannot create zarvoCore directory: …") when only it cannot.
  static const Folder& zarvoCoreDirectory();

  /// "kext" in the shared product folder; nothing when it cannot be made.
  static const Folder& rootUtilsDirectory();
};
