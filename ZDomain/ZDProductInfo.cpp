#include "ZDomain/ZDProductInfo.h"

#include <optional>
#include <string_view>

#include "foundation/Format.h"
#include "foundation/Unicode.h"
#include "foundation/Value.h"
#include "platform/Bundle.h"
#include "platform/Process.h"

namespace {

constexpr std::string_view versionKey = "ZVVersion";
constexpr std::string_view buildKey = "CFBundleVersion";

std::optional<std::string> information(std::string_view key) {
  const foundation::Dictionary& dictionary = platform::Bundle::current().infoDictionary();
  const auto entry = dictionary.find(key);
  if (entry == dictionary.end()) return std::nullopt;
  if (const auto* const number = entry->second.as<foundation::Number>()) {
    return number->stringValue();
  }
  return foundation::stringForKey(dictionary, key);
}

std::string makeVersion() {
  const auto version = information(versionKey);
  return version ? *version : information(buildKey).value_or("1.0");
}

std::string versionAndBuild() {
  const auto version = information(versionKey);
  const auto build = information(buildKey);
  return version && build ? foundation::format("%@.%@", *version, *build) : makeVersion();
}

std::string makeFullVersion() {
  const std::string& channel = ZDProductInfo::channel();
  if (foundation::isBlank(channel)) return versionAndBuild();
  return foundation::format("%@ %@", versionAndBuild(), channel);
}

std::string makeUserAgent() {
  const auto system = platform::Process::operatingSystemVersion().value_or(
      platform::Process::OperatingSystemVersion());
  return foundation::format("%@/%@ (Macintosh; Intel Mac OS X %ld_%ld_%ld)", "Zarvo",
                            ZDProductInfo::fullVersion(), system.majorVersion, system.minorVersion,
                            system.patchVersion);
}

}  // namespace

// What is told once is never destroyed, so that exit handlers may ask as well.

const std::string& ZDProductInfo::version() {
  static const std::string& version = *new std::string(makeVersion());
  return version;
}

const std::string& ZDProductInfo::channel() {
  static const std::string& channel = *new std::string(information("ZVChannel").value_or(""));
  return channel;
}

bool ZDProductInfo::isBetaVersion() { return channel() == "beta"; }

foundation::Number ZDProductInfo::buildNumber() {
  return foundation::integerValue(information(buildKey).value_or(""));
}

std::string ZDProductInfo::devBuildNumber() { return buildNumber().stringValue(); }

const std::string& ZDProductInfo::fullVersion() {
  static const std::string& version = *new std::string(makeFullVersion());
  return version;
}

const std::string& ZDProductInfo::name() {
  static const std::string& name = *new std::string(information("CFBundleName").value_or("Zarvo"));
  return name;
}

const std::string& ZDProductInfo::userAgentString() {
  static const std::string& userAgent = *new std::string(makeUserAgent());
  return userAgent;
}
