#pragma once

#include <optional>
#include <string>

#include "foundation/Value.h"
#include "platform/Service.h"

namespace platform {

/// What the running program says of itself. Thread safety: any thread.
class Bundle : public Service<Bundle> {
 public:
  static Bundle& production();

  /// The information dictionary ("CFBundleIdentifier", "CFBundleName", …) that the program embeds
  /// or, when it was built to, reads from the bundle folder it lives in; empty for a bare program.
  /// Constant for the life of the process.
  virtual const foundation::Dictionary& infoDictionary() = 0;

  /// The "CFBundleIdentifier" of the information dictionary, if it has one.
  std::optional<std::string> bundleIdentifier();

  /// The name of the program's executable file, whatever it was called with.
  virtual std::string processName() = 0;

  /// The path of the program's executable file; empty when it is not known.
  virtual std::string executablePath() { return {}; }
};

/// Gives the running program an information dictionary, which `make` makes when it is first asked
/// for; to be called once, during static initialisation of the program that embeds it. The build
/// does it for a program whose list is named with `zarvo_information_list` (CMake).
void embedInfoDictionary(foundation::Dictionary (*make)());

}  // namespace platform
