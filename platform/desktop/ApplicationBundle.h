#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "foundation/URL.h"
#include "foundation/Value.h"

namespace platform {

/// What an application brings along: its information dictionary and its resources.
///
/// An application is a bundle folder, "Program.app/Contents" with "Info.plist" and "Resources"
/// inside
/// ("Contents" may be left out), or, on Linux, a desktop entry, whose images are the icon theme's.
/// Names of resources never lead out of the bundle. Immutable. Thread safety: any thread.
///
///     const auto bundle = ApplicationBundle::bundleWithURL(url);
///     const auto icon = bundle ? bundle->URLForImageResource("AppIcon") : std::nullopt;
class ApplicationBundle {
 public:
  /// bundleWithURL:
  ///
  /// The bundle that a folder's or desktop entry's URL names; null when nothing of the kind is
  /// there. A folder without a readable list is a bundle with an empty dictionary.
  static std::unique_ptr<ApplicationBundle> bundleWithURL(const foundation::URL& url);

  /// The running program's: the bundle folder that it lives in
  /// (Program.app/Contents/<folder>/program). A bare program's resources are beside it or, for one
  /// in "bin" or "sbin", in
  /// "../share/<program>", and it has an empty dictionary; `Bundle` tells the one in force.
  static std::unique_ptr<ApplicationBundle> mainBundle();

  virtual ~ApplicationBundle() = default;
  ApplicationBundle(const ApplicationBundle&) = delete;
  ApplicationBundle& operator=(const ApplicationBundle&) = delete;

  /// A desktop entry's has "CFBundleName" and "CFBundleIconFile", if the entry says so.
  const foundation::Dictionary& infoDictionary() const { return information_; }

  /// URLForResource:withExtension:subdirectory:
  ///
  /// The file `name`.`extension` in a folder of the resources; nothing when there is none. An empty
  /// extension adds no full stop, an empty subdirectory is the resources' own folder.
  virtual std::optional<foundation::URL> URLForResource(std::string_view name,
                                                        std::string_view extension,
                                                        std::string_view subdirectory) const = 0;

  /// URLForImageResource:
  ///
  /// The image called `name`, with the extension or without; nothing when there is none. Without,
  /// it is the ".icns" or else the ".png" file.
  virtual std::optional<foundation::URL> URLForImageResource(std::string_view name) const = 0;

 protected:
  explicit ApplicationBundle(foundation::Dictionary information)
      : information_(std::move(information)) {}

 private:
  const foundation::Dictionary information_;
};

}  // namespace platform
