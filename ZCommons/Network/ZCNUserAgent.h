#pragma once

#include <optional>
#include <string>

#include "ZCommons/Network/ZCNBrowser.h"
#include "foundation/NullableText.h"

/// A user-agent value with its browser and the browser's version.
///
/// Immutable but for assignment; any number of threads may use one at once.
///
///     const ZCNUserAgent agent("Mozilla/5.0 … Chrome/71.0.3578.98 Safari/537.36");
///     agent.browser().name();   // Google Chrome
///     agent.browserVersion();   // 71.0.3578.98
class ZCNUserAgent {
 public:
  /// initWithValue:
  ///
  /// Keeps `value` as it is, null included, and detects its browser and version.
  explicit ZCNUserAgent(foundation::NullableText value);

  const std::optional<std::string>& userAgentValue() const { return userAgentValue_; }

  /// One of the known browsers; Opera for a value that tells none.
  const ZCNBrowser& browser() const { return *browser_; }

  /// Null when the value tells no version of that browser.
  const std::optional<std::string>& browserVersion() const { return browserVersion_; }

 private:
  std::optional<std::string> userAgentValue_;
  const ZCNBrowser* browser_;
  std::optional<std::string> browserVersion_;
};
