#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ZCommons/Network/ZCLURL.h"
#include "foundation/NullableText.h"
#include "foundation/StringEncoding.h"
#include "foundation/URL.h"
#include "foundation/Value.h"

/// URLs and hosts as texts: their parts, what kind of host it is, to which site a request belongs.
///
/// What an operation cannot use gives the neutral result that it states; nothing is logged. Texts
/// are compared byte by byte, case counts. Thread safety: any thread.
class ZCNUrlUtils {
 public:
  ZCNUrlUtils() = delete;

  /// Whether a request stays on the site that refers to it.
  enum RequestParty : int { firstParty = 1, thirdParty = 2, unknownParty = 4 };

  /// The encoding of percent escapes: UTF-8.
  static constexpr foundation::StringEncoding defaultUrlEscapeEncoding() {
    return foundation::StringEncoding::UTF8;
  }

  /// `parameter` with the characters illegal in URLs escaped as UTF-8, and also "/+=&"; null for
  /// null.
  static std::optional<std::string> percentEncodeUrlParameter(foundation::NullableText parameter);

  /// createStringFromParameters:xmlStrict:
  ///
  /// "key=value" for each parameter, joined with "&", or with "&amp;" for `xmlStrict`. Keys stay as
  /// they are; values are the texts of the objects through `percentEncodeUrlParameter`.
  static std::string createStringFromParameters(const foundation::Dictionary& parameters,
                                                bool xmlStrict);

  /// The host in ASCII (`NSStringPunycodeAdditions::IDNAEncodedString`); empty for a null, empty or
  /// white-space-only text.
  static std::string toPunyCode(foundation::NullableText host);

  /// thirdPartyRequest:referrer:
  ///
  /// Compares the second-level domains of two URLs, percent-escaped first. `unknownParty` for a
  /// null or empty referrer; `thirdParty` when one of the URLs has no usable host. Raises as
  /// `secondLevelDomainName` does.
  static RequestParty thirdPartyRequest(foundation::NullableText request,
                                        foundation::NullableText referrer);

  /// What stands behind the first "//" up to the next "/", "?", "#" or ":", which may be empty;
  /// null without "//". A user name stays in front: "me@example.com".
  static std::optional<std::string> host(foundation::NullableText url);

  /// The port of the URL that `url` is once percent-escaped, as `portForUrl`; 80 for null.
  static std::uint16_t port(foundation::NullableText url);

  /// The explicit port of `url`, else 443 for the scheme "https", spelled like that, else 80.
  static std::uint16_t portForUrl(const std::optional<foundation::URL>& url);

  /// Whether the whole of `text` is a domain name (`ZCNHostPatterns::domainName`); false for null.
  static bool isDomainName(foundation::NullableText text);

  /// Whether the whole of `text` is an IPv4 address (`ZCNHostPatterns::IPv4`); false for null.
  static bool isIPv4(foundation::NullableText text);

  /// Whether the whole of `text` is an IPv6 address without brackets (`ZCNHostPatterns::IPv6`);
  /// false for null.
  static bool isIPv6(foundation::NullableText text);

  /// domainNameFor:cropWWW:
  ///
  /// The `host` of `url`, for `cropWWW` without a "www." in front.
  static std::optional<std::string> domainNameFor(foundation::NullableText url, bool cropWWW);

  /// The URL of `rightUrlEscaping(string)`; null for null, and when that is no URL.
  static std::optional<foundation::URL> URLWithString(foundation::NullableText string);

  /// URLWithString:relativeToURL:
  ///
  /// The URL of the percent-escaped text, "#" escaped too, resolved against `baseURL` (RFC 3986,
  /// section 5.2), which may be null.
  static std::optional<foundation::URL> URLWithString(
      foundation::NullableText string, const std::optional<foundation::URL>& baseURL);

  /// `secondLevelDomainName` of the URL's host.
  static std::optional<std::string> secondLevelDomainNameForUrl(
      const std::optional<foundation::URL>& url);

  /// The part of `host` that its owner has registered: the last two labels, or one more than the
  /// reserved domain that they end in (`ZCNReservedDomains`). A host of fewer than three labels is
  /// returned as it is, null gives null.
  ///
  /// Raises NSInternalInconsistencyException when the lists cannot be read, and NSRangeException
  /// for a host that itself is a reserved domain of three labels, unless its last two are reserved.
  static std::optional<std::string> secondLevelDomainName(foundation::NullableText host);

  /// absoluteUrlForRelative:base:
  ///
  /// The absolute string of the `ZCLURL` for `relative` as seen from `base`.
  static std::optional<std::string> absoluteUrlForRelative(foundation::NullableText relative,
                                                           const std::optional<ZCLURL>& base);

  /// As `ZCLURL::rightUrlEscaping`.
  static std::optional<std::string> rightUrlEscaping(foundation::NullableText string);
};
