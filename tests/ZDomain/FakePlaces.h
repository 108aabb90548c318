#pragma once

#include <string>

#include "platform/Bundle.h"
#include "platform/Folders.h"
#include "tests/support/TemporaryFolder.h"

namespace support {

/// Standard folders inside a temporary one.
struct FakeFolders : platform::Folders {
  foundation::Result<foundation::URL> url(platform::SearchPathDirectory,
                                          platform::SearchPathDomain domain) override {
    if (!available) return foundation::Error("test", 1, "no such folder");
    const bool isUser = domain == platform::SearchPathDomain::user;
    return foundation::URL::fileURLWithPath(folder.path(isUser ? "user" : "local"));
  }
  foundation::URL temporaryDirectory() override {
    return foundation::URL::fileURLWithPath(folder.path());
  }

  const TemporaryFolder folder;
  bool available = true;
};

/// A running program as a test says.
struct FakeBundle : platform::Bundle {
  const foundation::Dictionary& infoDictionary() override { return information; }
  std::string processName() override { return "test"; }
  std::string executablePath() override { return executable; }

  std::string executable;
  foundation::Dictionary information{{"CFBundleIdentifier", "com.zarvo.Companion"}};
};

}  // namespace support
