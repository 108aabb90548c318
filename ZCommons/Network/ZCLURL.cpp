#include "ZCommons/Network/ZCLURL.h"

#include <utility>

#include "foundation/Format.h"
#include "foundation/PercentEscape.h"

using foundation::NullableText;
using foundation::URL;

namespace {

std::optional<std::string> withoutEscapes(const std::optional<std::string>& text) {
  return text ? foundation::stringByReplacingPercentEscapes(*text) : std::nullopt;
}

}  // namespace

ZCLURL::ZCLURL(std::optional<URL> url) : url_(std::move(url)) {
  if (!url_) return;
  url_ = url_->standardizedURL();
  parseMethod2();
}

std::optional<ZCLURL> ZCLURL::initWithURLString(NullableText string) {
  return initWithURLString(string, std::nullopt);
}

std::optional<ZCLURL> ZCLURL::initWithURLString(NullableText string,
                                                const std::optional<ZCLURL>& baseURL) {
  if (string.isNullOrEmpty()) return std::nullopt;
  return ZCLURL(
      URL::URLWithString(*rightUrlEscaping(string), baseURL ? baseURL->url_ : std::nullopt));
}

std::optional<ZCLURL> ZCLURL::URLWithString(NullableText string) {
  return initWithURLString(string);
}

std::optional<ZCLURL> ZCLURL::URLWithString(NullableText string,
                                            const std::optional<ZCLURL>& baseURL) {
  return initWithURLString(string, baseURL);
}

std::optional<std::string> ZCLURL::rightUrlEscaping(NullableText string) {
  if (string.isNull()) return std::nullopt;
  return foundation::stringByAddingPercentEscapes(string.view(), "#");
}

void ZCLURL::parseMethod2() {
  absoluteString_ = withoutEscapes(url_->absoluteString());
  scheme_ = withoutEscapes(url_->scheme());
  host_ = withoutEscapes(url_->host());
}

std::string ZCLURL::description() const { return foundation::format("%@", absoluteString_); }

bool ZCLURL::isEqual(const foundation::Object& other) const {
  const auto* const url = dynamic_cast<const ZCLURL*>(&other);
  return url && url->absoluteString_ == absoluteString_;
}

std::size_t ZCLURL::hash() const {
  return absoluteString_ ? std::hash<std::string>()(*absoluteString_) : 0;
}
