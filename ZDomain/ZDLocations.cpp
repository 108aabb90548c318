#include "ZDomain/ZDLocations.h"

#include <sys/types.h>

#include <atomic>
#include <string>
#include <string_view>
#include <utility>

#include "ZDomain/ProductBundleIdentifier.h"
#include "foundation/Format.h"
#include "foundation/Mutex.h"
#include "foundation/NSException.h"
#include "logging/DDLogMacros.h"
#include "platform/Bundle.h"
#include "platform/FileSystem.h"

using foundation::Result;
using foundation::URL;
using platform::SearchPathDirectory;
using platform::SearchPathDomain;
using Folder = ZDLocations::Folder;

namespace {

// Null until the folder is known; what it points at is never destroyed.
using Slot = std::atomic<const Folder*>;

const Folder none;

// What "%p" of the class prints.
constexpr char classObject = 0;
const void* const receiver = &classObject;

// Locked and unlocked by hand: an exception of `make` is fatal, and leaves the lock held.
const Folder& cached(Slot& slot, Folder (*make)()) {
  static foundation::RecursiveMutex& lock = *new foundation::RecursiveMutex("ZDLocations");
  if (const Folder* const known = slot.load(std::memory_order_acquire)) return *known;
  lock.lock();
  if (!slot.load(std::memory_order_relaxed)) {
    Folder folder = make();
    if (folder) slot.store(new Folder(std::move(folder)), std::memory_order_release);
  }
  lock.unlock();
  const Folder* const made = slot.load(std::memory_order_acquire);
  return made ? *made : none;
}

Result<URL> makeFolder(const URL& parent, std::string_view component,
                       std::optional<mode_t> permissions = std::nullopt) {
  URL folder = parent.URLByAppendingPathComponent(component, URL::Kind::directory);
  const auto created = platform::FileSystem::createDirectory(folder.path(), permissions);
  if (!created) return created.error();
  return folder;
}

Result<URL> makeApplicationSupportFolder(SearchPathDomain domain) {
  Result<URL> folder =
      platform::Folders::current().url(SearchPathDirectory::applicationSupport, domain);
  if (!folder) return folder;
  const auto created = platform::FileSystem::createDirectory(folder->path());
  if (!created) return created.error();
  return folder;
}

// The folders as they are made, each once.
namespace made {

Folder productDataDirectory() {
  return ZDLocations::productDataDirectoryForDomain(SearchPathDomain::user);
}

Folder sharedProductDataDirectory() {
  return ZDLocations::productDataDirectoryForDomain(SearchPathDomain::local);
}

Folder sharedZarvoCoreDirectory() {
  const Folder& parent = ZDLocations::sharedProductDataDirectory();
  if (!parent) return std::nullopt;
  Result<URL> folder = makeFolder(*parent, "ZarvoCore");
  if (folder) return *std::move(folder);
  // Callers know this text, which speaks of the cache inside.
  DDLogError(105, "(%@[%p] %@) Cannot create ZarvoCore certificates cache directory: %@", THIS_FILE,
             receiver, __func__, folder.error().localizedDescription());
  return std::nullopt;
}

Folder zarvoCoreCertCacheDirectory() {
  const Folder& parent = ZDLocations::sharedZarvoCoreDirectory();
  if (!parent) return std::nullopt;
  Result<URL> folder = makeFolder(*parent, "CertCache", 0777);
  if (folder) return *std::move(folder);
  DDLogError(143, "(%@[%p] %@) Cannot create ZarvoCore certificates cache directory: %@", THIS_FILE,
             receiver, __func__, folder.error().localizedDescription());
  return std::nullopt;
}

Folder appIconsCacheDirectory() {
  const Folder& parent = ZDLocations::productDataDirectory();
  if (!parent) return std::nullopt;
  Result<URL> folder = makeFolder(*parent, "AppIcons");
  if (folder) return *std::move(folder);
  const std::string reason =
      foundation::format("Cannot create app icons cache directory: %@", folder.error());
  DDLogError(181, "(%@[%p] %@) %@", THIS_FILE, receiver, __func__, reason);
  foundation::raise<foundation::NSGenericException>(reason);
}

Folder zarvoCoreDirectory() {
  const Folder& parent = ZDLocations::productDataDirectory();
  if (!parent) return std::nullopt;
  Result<URL> folder = makeFolder(*parent, "ZarvoCore");
  if (folder) return *std::move(folder);
  const std::string reason =
      foundation::format("Cannot create zarvoCore directory: %@", folder.error());
  DDLogError(219, "(%@[%p] %@) %@", THIS_FILE, receiver, __func__, reason);
  foundation::raise<foundation::NSGenericException>(reason);
}

Folder rootUtilsDirectory() {
  const Folder& parent = ZDLocations::sharedProductDataDirectory();
  if (!parent) return std::nullopt;
  Result<URL> folder = makeFolder(*parent, "kext");
  if (folder) return *std::move(folder);
  DDLogError(257, "(%@[%p] %@) Cannot create root utils directory: %@", THIS_FILE, receiver,
             __func__, folder.error().localizedDescription());
  return std::nullopt;
}

}  // namespace made

}  // namespace

const Folder& ZDLocations::productDataDirectory() {
  static constinit Slot slot{nullptr};
  return cached(slot, made::productDataDirectory);
}

const Folder& ZDLocations::sharedProductDataDirectory() {
  static constinit Slot slot{nullptr};
  return cached(slot, made::sharedProductDataDirectory);
}

Folder ZDLocations::productDataDirectoryForDomain(SearchPathDomain domain) {
  const Result<URL> support = makeApplicationSupportFolder(domain);
  if (!support) {
    DDLogError(284, "(%@[%p] %@) Cannot create application data directory: %@", THIS_FILE, receiver,
               "productDataDirectoryForDomain:", support.error().localizedDescription());
    foundation::raise<foundation::NSGenericException>("Cannot create application data directory");
  }
  const auto identifier = platform::Bundle::current().bundleIdentifier();
  Result<URL> folder = makeFolder(*support, identifier.value_or(ProductBundleIdentifier));
  if (folder) return *std::move(folder);
  DDLogError(297, "(%@[%p] %@) Cannot create application data directory: %@", THIS_FILE, receiver,
             "productDataDirectoryForDomain:", folder.error().localizedDescription());
  return std::nullopt;
}

const Folder& ZDLocations::sharedZarvoCoreDirectory() {
  static constinit Slot slot{nullptr};
  return cached(slot, made::sharedZarvoCoreDirectory);
}

const Folder& ZDLocations::zarvoCoreCertCacheDirectory() {
  static constinit Slot slot{nullptr};
  return cached(slot, made::zarvoCoreCertCacheDirectory);
}

const Folder& ZDLocations::appIconsCacheDirectory() {
  static constinit Slot slot{nullptr};
  return cached(slot, made::appIconsCacheDirectory);
}

const Folder& ZDLocations::zarvoCoreDirectory() {
  static constinit Slot slot{nullptr};
  return cached(slot, made::zarvoCoreDirectory);
}

const Folder& ZDLocations::rootUtilsDirectory() {
  static constinit Slot slot{nullptr};
  return cached(slot, made::rootUtilsDirectory);
}
