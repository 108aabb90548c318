#include "ZCommons/Network/ZCNUrlUtils.h"

#include <algorithm>

#include "ZCommons/Network/NSStringPunycodeAdditions.h"
#include "ZCommons/Network/ZCNHostPatterns.h"
#include "ZCommons/Network/ZCNReservedDomains.h"
#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "foundation/PercentEscape.h"
#include "foundation/Unicode.h"

using foundation::NullableText;
using foundation::stringByAddingPercentEscapes;
using foundation::URL;

namespace {

// The dot in front of another, or `npos`.
std::size_t dotBefore(std::string_view host, std::size_t dot) {
  return dot == 0 || dot == host.npos ? host.npos : host.rfind('.', dot - 1);
}

[[noreturn]] void raiseNoFourthLabel(NullableText host) {
  foundation::raise<foundation::NSRangeException>(
      foundation::format("The reserved domain \"%@\" has no fourth label from the end.", host));
}

}  // namespace

std::optional<std::string> ZCNUrlUtils::percentEncodeUrlParameter(NullableText parameter) {
  if (parameter.isNull()) return std::nullopt;
  return stringByAddingPercentEscapes(parameter.view(), {}, "/+=&");
}

std::string ZCNUrlUtils::createStringFromParameters(const foundation::Dictionary& parameters,
                                                    bool xmlStrict) {
  std::string result;
  for (const auto& [key, value] : parameters) {
    if (!result.empty()) result += xmlStrict ? "&amp;" : "&";
    ((result += key) += '=') += *percentEncodeUrlParameter(value.description());
  }
  return result;
}

std::string ZCNUrlUtils::toPunyCode(NullableText host) {
  if (foundation::isBlank(host.view())) return {};
  return NSStringPunycodeAdditions::IDNAEncodedString(host.view());
}

ZCNUrlUtils::RequestParty ZCNUrlUtils::thirdPartyRequest(NullableText request,
                                                         NullableText referrer) {
  if (referrer.isNullOrEmpty()) return unknownParty;
  const auto requestDomain = secondLevelDomainNameForUrl(URLWithString(request, std::nullopt));
  const auto referrerDomain = secondLevelDomainNameForUrl(URLWithString(referrer, std::nullopt));
  return referrerDomain && requestDomain == referrerDomain ? firstParty : thirdParty;
}

std::optional<std::string> ZCNUrlUtils::host(NullableText url) {
  const std::string_view text = url.view();
  const std::size_t slashes = text.find("//");
  if (slashes == text.npos) return std::nullopt;
  const std::string_view rest = text.substr(slashes + 2);
  const auto endsHost = [](char c) { return c == '/' || c == '?' || c == '#' || c == ':'; };
  return std::string(rest.begin(), std::find_if(rest.begin(), rest.end(), endsHost));
}

std::uint16_t ZCNUrlUtils::port(NullableText url) {
  return portForUrl(URLWithString(url, std::nullopt));
}

std::uint16_t ZCNUrlUtils::portForUrl(const std::optional<URL>& url) {
  if (!url) return 80;
  return url->port().value_or(url->scheme() == "https" ? 443 : 80);
}

bool ZCNUrlUtils::isDomainName(NullableText text) {
  return ZCNHostPatterns::matchesDomainName(text.view());
}

bool ZCNUrlUtils::isIPv4(NullableText text) { return ZCNHostPatterns::matchesIPv4(text.view()); }

bool ZCNUrlUtils::isIPv6(NullableText text) { return ZCNHostPatterns::matchesIPv6(text.view()); }

std::optional<std::string> ZCNUrlUtils::domainNameFor(NullableText url, bool cropWWW) {
  std::optional<std::string> name = host(url);
  if (name && cropWWW && name->starts_with("www.")) name->erase(0, 4);
  return name;
}

std::optional<URL> ZCNUrlUtils::URLWithString(NullableText string) {
  const std::optional<std::string> text = rightUrlEscaping(string);
  return text ? URL::URLWithString(*text) : std::nullopt;
}

std::optional<URL> ZCNUrlUtils::URLWithString(NullableText string,
                                              const std::optional<URL>& baseURL) {
  if (string.isNull()) return std::nullopt;
  return URL::URLWithString(stringByAddingPercentEscapes(string.view()), baseURL);
}

std::optional<std::string> ZCNUrlUtils::secondLevelDomainNameForUrl(const std::optional<URL>& url) {
  return secondLevelDomainName(url ? url->host() : std::nullopt);
}

std::optional<std::string> ZCNUrlUtils::secondLevelDomainName(NullableText host) {
  const ZCNReservedDomains& reserved = ZCNReservedDomains::singleton();
  if (host.isNull()) return std::nullopt;
  const std::string_view text = host.view();
  const std::size_t secondDot = dotBefore(text, text.rfind('.'));
  if (secondDot == text.npos) return std::string(text);
  const std::size_t thirdDot = dotBefore(text, secondDot);
  const bool hasThreeLabels = thirdDot == text.npos;
  const std::string_view two = text.substr(secondDot + 1);
  const std::string_view three = text.substr(hasThreeLabels ? 0 : thirdDot + 1);
  const bool isTwoReserved = reserved.isTwoLevel(two);
  if (isTwoReserved && hasThreeLabels) return std::string(three);
  if (reserved.isThreeLevel(three)) {
    if (hasThreeLabels) raiseNoFourthLabel(host);
    return std::string(text.substr(dotBefore(text, thirdDot) + 1));
  }
  return std::string(isTwoReserved ? three : two);
}

std::optional<std::string> ZCNUrlUtils::absoluteUrlForRelative(NullableText relative,
                                                               const std::optional<ZCLURL>& base) {
  const std::optional<ZCLURL> url = ZCLURL::URLWithString(relative, base);
  return url ? url->absoluteString() : std::nullopt;
}

std::optional<std::string> ZCNUrlUtils::rightUrlEscaping(NullableText string) {
  return ZCLURL::rightUrlEscaping(string);
}
