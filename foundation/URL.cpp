#include "foundation/URL.h"

#include "foundation/PercentEscape.h"
#include "foundation/URIReference.h"
#include "foundation/Unicode.h"

namespace foundation {
namespace {

bool isLocalFile(const URIReference& parts) {
  const std::string_view authority = parts.authority.value_or("");
  return parts.scheme && isEqualIgnoringCase(*parts.scheme, "file") &&
         parts.path.starts_with('/') && (authority.empty() || authority == "localhost");
}

}  // namespace

URL URL::fileURLWithPath(std::string_view path, Kind kind) {
  std::string absolute;
  absolute.reserve(path.size() + 2);
  if (!path.starts_with('/')) absolute += '/';
  absolute += path;
  if (kind == Kind::directory && !absolute.ends_with('/')) absolute += '/';
  return URL({}, std::move(absolute));
}

std::optional<URL> URL::URLWithString(std::string_view text) {
  const std::optional<URIReference> parts = URIReference::parse(text);
  if (!parts) return std::nullopt;
  if (!isLocalFile(*parts)) return URL(std::string(text), {});
  std::optional<std::string> path = bytesByReplacingPercentEscapes(parts->path);
  if (!path || path->find('\0') != path->npos) return std::nullopt;
  URL url({}, *std::move(path));
  if (url.absoluteString() != text) url.text_ = text;
  return url;
}

std::optional<URL> URL::URLWithString(std::string_view text, const std::optional<URL>& baseURL) {
  if (!baseURL) return URLWithString(text);
  const std::optional<URIReference> reference = URIReference::parse(text);
  if (!reference) return std::nullopt;
  const std::string base = baseURL->absoluteString();
  return URLWithString(reference->resolvedAgainst(*URIReference::parse(base)));
}

URL URL::standardizedURL() const {
  const std::string text = absoluteString();
  return URLWithString(URIReference::parse(text)->withoutDotSegments()).value_or(*this);
}

std::optional<std::string> URL::scheme() const {
  if (isFileURL() && text_.empty()) return "file";
  const auto parts = URIReference::parse(text_);
  return parts->scheme ? std::optional<std::string>(*parts->scheme) : std::nullopt;
}

std::optional<std::string> URL::host() const {
  std::string_view host = URIReference::parse(text_)->host().value_or("");
  if (host.empty()) return std::nullopt;
  if (host.starts_with('[')) host = host.substr(1, host.size() - 2);
  return stringByReplacingPercentEscapes(host);
}

std::optional<std::uint16_t> URL::port() const {
  const std::optional<std::uint16_t> port = URIReference::parse(text_)->port();
  return port == 0 ? std::nullopt : port;
}

std::string_view URL::path() const {
  std::string_view path = path_;
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path;
}

std::string_view URL::lastPathComponent() const {
  const std::string_view whole = path();
  if (whole == "/") return whole;
  return whole.substr(whole.rfind('/') + 1);
}

URL URL::URLByAppendingPathComponent(std::string_view component, Kind kind) const {
  if (!isFileURL()) return *this;
  std::string path;
  path.reserve(path_.size() + component.size() + 2);
  path += path_;
  if (!path.ends_with('/')) path += '/';
  path += component;
  if (kind == Kind::directory && !path.ends_with('/')) path += '/';
  return URL({}, std::move(path));
}

std::string URL::absoluteString() const {
  if (!text_.empty() || !isFileURL()) return text_;
  std::string result = "file://";
  return result += stringByAddingPercentEscapes(path_, {}, ";?");
}

}  // namespace foundation
