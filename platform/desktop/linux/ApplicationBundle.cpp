#include "platform/desktop/ApplicationBundle.h"

#include <string>
#include <vector>

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/desktop/BundleFolder.h"
#include "platform/desktop/IconTheme.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/SmallFile.h"
#include "platform/posix/RegularFile.h"

namespace platform {
namespace {

using foundation::URL;

/// An installed application without a folder of its own.
class DesktopEntryBundle final : public ApplicationBundle {
 public:
  explicit DesktopEntryBundle(const DesktopEntry& entry) : ApplicationBundle(information(entry)) {}

  std::optional<URL> URLForResource(std::string_view, std::string_view,
                                    std::string_view) const override {
    return std::nullopt;
  }

  std::optional<URL> URLForImageResource(std::string_view name) const override {
    return IconTheme::current().URLForIcon(name);
  }

 private:
  static foundation::Dictionary information(const DesktopEntry& entry) {
    foundation::Dictionary information;
    if (entry.name) information.emplace("CFBundleName", *entry.name);
    if (!entry.icon.empty()) information.emplace("CFBundleIconFile", entry.icon);
    return information;
  }
};

std::unique_ptr<ApplicationBundle> bundleOfEntry(const std::string& path) {
  constexpr std::size_t entryLimit = 1024 * 1024;
  const auto text = readSmallFile(path, entryLimit);
  if (!text) return nullptr;
  const DesktopEntry entry = DesktopEntry::parse(*text, {});
  if (!entry.isApplication) return nullptr;
  return std::make_unique<DesktopEntryBundle>(entry);
}

struct Split {
  std::string folder;
  std::string name;
};

Split split(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return {"", path};
  return {path.substr(0, slash), path.substr(slash + 1)};
}

}  // namespace

std::unique_ptr<ApplicationBundle> ApplicationBundle::bundleWithURL(const URL& url) {
  const std::string path(url.path());
  if (path.empty()) return nullptr;
  if (path.ends_with(".desktop") && isRegularFile(path)) return bundleOfEntry(path);
  if (!FileSystem::exists(path + "/.")) return nullptr;
  const std::string contents = path + "/Contents";
  if (FileSystem::exists(contents)) {
    return std::make_unique<BundleFolder>(contents + "/Info.plist",
                                          std::vector{contents + "/Resources"});
  }
  return std::make_unique<BundleFolder>(path + "/Info.plist",
                                        std::vector{path + "/Resources", path});
}

std::unique_ptr<ApplicationBundle> ApplicationBundle::mainBundle() {
  const Split program = split(Bundle::current().executablePath());
  const Split folder = split(program.folder);
  const std::string list = folder.folder + "/Info.plist";
  if (folder.folder.ends_with("/Contents") && isRegularFile(list)) {
    return std::make_unique<BundleFolder>(list, std::vector{folder.folder + "/Resources"});
  }
  std::vector<std::string> resources{program.folder};
  if (folder.name == "bin" || folder.name == "sbin") {
    resources.push_back(folder.folder + "/share/" + program.name);
  }
  return std::make_unique<BundleFolder>("", std::move(resources));
}

}  // namespace platform
