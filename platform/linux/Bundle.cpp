#include "platform/Bundle.h"

#include <sys/auxv.h>
#include <unistd.h>

#include <atomic>

#include "platform/linux/ProcFileSystem.h"

namespace platform {
namespace {

constinit std::atomic<foundation::Dictionary (*)()> makeDictionary{nullptr};

std::string findExecutable() {
  std::string path = ProcFileSystem().executable(getpid());
  if (!path.empty()) return path;
  // Without /proc, the path that the kernel was given to start the program.
  const auto* started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  return started ? started : "";
}

class EmbeddedBundle final : public Bundle {
 public:
  const foundation::Dictionary& infoDictionary() override {
    static const foundation::Dictionary& dictionary = *new foundation::Dictionary(make());
    return dictionary;
  }
  std::string processName() override { return lastComponent(executablePath_); }
  std::string executablePath() override { return executablePath_; }

 private:
  static std::string lastComponent(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
  }

  static foundation::Dictionary make() {
    foundation::Dictionary (*const embedded)() = makeDictionary.load();
    return embedded ? embedded() : foundation::Dictionary();
  }

  const std::string executablePath_ = findExecutable();
};

}  // namespace

Bundle& Bundle::production() {
  static Bundle& bundle = *new EmbeddedBundle;
  return bundle;
}

std::optional<std::string> Bundle::bundleIdentifier() {
  return foundation::stringForKey(infoDictionary(), "CFBundleIdentifier");
}

void embedInfoDictionary(foundation::Dictionary (*make)()) { makeDictionary.store(make); }

}  // namespace platform
