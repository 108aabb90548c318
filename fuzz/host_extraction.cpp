#include <cstdint>
#include <cstdlib>

#include "ZCommons/Network/NSURLUtils.h"
#include "ZCommons/Network/ZCNHostPatterns.h"
#include "ZCommons/Network/ZCNUrlUtils.h"
#include "foundation/NSException.h"
#include "foundation/RegularExpression.h"

using foundation::RegularExpression;

namespace {

bool matches(std::string_view pattern, std::string_view text) {
  const auto match =
      RegularExpression::regularExpressionWithPattern(pattern, RegularExpression::caseInsensitive)
          ->firstMatchInString(text);
  return match && match->front()->length == text.size();
}

}  // namespace

// A URL is cut without harm, stays the same when its dots are removed again, and short texts match
// the patterns of hosts just as the engine says.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const std::string_view input = foundation::textOf({bytes, length});
  ZCNUrlUtils::domainNameFor(input, true);
  ZCNUrlUtils::toPunyCode(input);
  try {
    ZCNUrlUtils::thirdPartyRequest(input, input);
  } catch (const foundation::NSRangeException&) {
  }
  if (const auto url = foundation::URL::URLWithString(input)) {
    NSURLUtils::hostWithPort(*url);
    NSURLUtils::relativeUrlString(*url);
    const foundation::URL standardized = url->standardizedURL();
    if (standardized.standardizedURL() != standardized) std::abort();
    if (standardized.scheme() != url->scheme() || standardized.host() != url->host()) std::abort();
  }
  if (length > 24) return 0;
  if (matches(ZCNHostPatterns::domainName, input) != ZCNUrlUtils::isDomainName(input)) std::abort();
  if (matches(ZCNHostPatterns::IPv4, input) != ZCNUrlUtils::isIPv4(input)) std::abort();
  if (matches(ZCNHostPatterns::IPv6, input) != ZCNUrlUtils::isIPv6(input)) std::abort();
  return 0;
}
