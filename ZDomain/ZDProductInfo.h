#pragma once

#include <string>

#include "foundation/Number.h"

/// What product and version the running program is.
///
/// Told from the program's information dictionary (`platform::Bundle`): "ZVVersion" (marketing
/// version), "CFBundleVersion" (build number), "ZVChannel" (release channel), "CFBundleName". A
/// number there counts as its decimal text; any other value that is no text counts as missing.
///
/// Thread safety: any thread. A text is made on the first request, once, and stays the same for the
/// life of the process; the references stay good for ever.
///
///     request.setHeader("User-Agent", ZDProductInfo::userAgentString());
class ZDProductInfo {
 public:
  ZDProductInfo() = delete;

  /// The marketing version ("2.1"); without one the build number's text, without both "1.0".
  static const std::string& version();

  /// The release channel as it stands ("beta"); empty when there is none.
  static const std::string& channel();

  /// Whether the channel is exactly "beta".
  static bool isBetaVersion();

  /// The integer that the build number's text begins with; 0 when it is missing or begins with
  /// none. Of type code q. Read on every call.
  static foundation::Number buildNumber();

  /// `buildNumber` in decimal.
  static std::string devBuildNumber();

  /// Marketing version and build number with a full stop between, or the one there is, or "1.0";
  /// then a blank and the channel, unless that is blank: "2.1.300 beta".
  static const std::string& fullVersion();

  /// The name for people; "Zarvo" when there is none.
  static const std::string& name();

  /// What web requests carry: "Zarvo/", the full version with its blank if it has one, and the
  /// operating system's version numbers (zeros when the system tells none):
  /// "Zarvo/2.1.300 beta (Macintosh; Intel Mac OS X 6_1_0)".
  static const std::string& userAgentString();
};
