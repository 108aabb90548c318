#include "ZCommons/Network/NSURLUtils.h"

#include "foundation/Format.h"

namespace NSURLUtils {

std::optional<std::string> hostWithPort(const foundation::URL& url) {
  const auto port = url.port();
  return port ? foundation::format("%@:%@", url.host(), *port) : url.host();
}

std::string relativeUrlString(const foundation::URL& url) {
  std::string text = url.absoluteString();
  std::size_t start = text.find("://");
  if (start != text.npos) {
    start += 3;
  } else if (text.starts_with("//")) {
    start = 2;
  } else {
    return text;
  }
  const std::size_t slash = text.find('/', start);
  return slash == text.npos ? text : text.substr(slash);
}

}  // namespace NSURLUtils
