#include "ZCommons/Network/NSURLPunycodeAdditions.h"

#include "ZCommons/Network/NSStringPunycodeAdditions.h"

namespace NSURLPunycodeAdditions {

std::optional<foundation::URL> URLWithUnicodeString(std::string_view text) {
  return foundation::URL::URLWithString(NSStringPunycodeAdditions::encodedURLString(text));
}

std::string decodedURLString(const foundation::URL& url) {
  return NSStringPunycodeAdditions::decodedURLString(url.absoluteString());
}

}  // namespace NSURLPunycodeAdditions
