#pragma once

#include <string>
#include <vector>

#include "platform/desktop/ApplicationBundle.h"

namespace platform {

/// A bundle of folders: the path of the information list, which need not be there, and the folders
/// of resources, an earlier one before a later.
class BundleFolder final : public ApplicationBundle {
 public:
  BundleFolder(const std::string& listPath, std::vector<std::string> resourceFolders);

  std::optional<foundation::URL> URLForResource(std::string_view name, std::string_view extension,
                                                std::string_view subdirectory) const override;
  std::optional<foundation::URL> URLForImageResource(std::string_view name) const override;

 private:
  const std::vector<std::string> resourceFolders_;
};

}  // namespace platform
