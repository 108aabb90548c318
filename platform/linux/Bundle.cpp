#include "platform/Bundle.h"

#include <sys/auxv.h>
#include <unistd.h>

#include <utility>

#include "platform/linux/ProcFileSystem.h"

namespace platform {
namespace {

foundation::Dictionary& embeddedDictionary() {
  static foundation::Dictionary& dictionary = *new foundation::Dictionary;
  return dictionary;
}

std::string executablePath() {
  std::string path = ProcFileSystem().executable(getpid());
  if (!path.empty()) return path;
  // Without /proc, the path that the kernel was given to start the program.
  const auto* started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  return started ? started : "";
}

class EmbeddedBundle final : public Bundle {
 public:
  const foundation::Dictionary& infoDictionary() override { return embeddedDictionary(); }
  std::string processName() override { return processName_; }

 private:
  static std::string lastComponent(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
  }

  const std::string processName_ = lastComponent(executablePath());
};

}  // namespace

Bundle& Bundle::production() {
  static Bundle& bundle = *new EmbeddedBundle;
  return bundle;
}

std::optional<std::string> Bundle::bundleIdentifier() {
  return foundation::stringForKey(infoDictionary(), "CFBundleIdentifier");
}

void embedInfoDictionary(foundation::Dictionary dictionary) {
  embeddedDictionary() = std::move(dictionary);
}

}  // namespace platform
