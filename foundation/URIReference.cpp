#include "foundation/URIReference.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace foundation {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isHexadecimal(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// unreserved and sub-delims: what every part may hold.
constexpr std::array<bool, 256> makePlainCharacters() {
  std::array<bool, 256> table{};
  constexpr std::string_view plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=";
  for (const char c : plain) table[static_cast<unsigned char>(c)] = true;
  return table;
}

constexpr std::array<bool, 256> plainCharacters = makePlainCharacters();

bool isPlain(char c) { return plainCharacters[static_cast<unsigned char>(c)]; }

// Whether `part` holds plain characters, well-formed escapes and those of `others` only.
bool holdsOnly(std::string_view part, std::string_view others) {
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (isPlain(part[i]) || others.find(part[i]) != std::string_view::npos) continue;
    if (part[i] != '%' || part.size() - i < 3) return false;
    if (!isHexadecimal(part[i + 1]) || !isHexadecimal(part[i + 2])) return false;
    i += 2;
  }
  return true;
}

bool isScheme(std::string_view text) {
  return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), [](char c) {
    return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
  });
}

bool isFutureAddress(std::string_view text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos || dot < 2 || (text[0] | 0x20) != 'v') return false;
  const std::string_view version = text.substr(1, dot - 1);
  const std::string_view address = text.substr(dot + 1);
  return !address.empty() && std::all_of(version.begin(), version.end(), isHexadecimal) &&
         std::all_of(address.begin(), address.end(), [](char c) { return isPlain(c) || c == ':'; });
}

bool isAddressInBrackets(std::string_view host) {
  if (!host.ends_with(']')) return false;
  const std::string address(host.substr(1, host.size() - 2));
  in6_addr parsed;
  const bool isIPv6 =
      address.find('\0') == std::string::npos && inet_pton(AF_INET6, address.c_str(), &parsed) == 1;
  return isIPv6 || isFutureAddress(address);
}

struct Authority {
  std::string_view user;
  std::string_view host;
  std::string_view port;
};

Authority splitAuthority(std::string_view text) {
  Authority result;
  if (const std::size_t at = text.find('@'); at != text.npos) {
    result.user = text.substr(0, at);
    text.remove_prefix(at + 1);
  }
  const std::size_t bracket = text.starts_with('[') ? text.find(']') : text.npos;
  const std::size_t colon = text.find(':', bracket == text.npos ? 0 : bracket);
  result.host = text.substr(0, colon);
  if (colon != text.npos) result.port = text.substr(colon + 1);
  return result;
}

bool isAuthority(std::string_view text) {
  const Authority parts = splitAuthority(text);
  const bool isHost =
      parts.host.starts_with('[') ? isAddressInBrackets(parts.host) : holdsOnly(parts.host, "");
  return isHost && holdsOnly(parts.user, ":") &&
         std::all_of(parts.port.begin(), parts.port.end(), isDigit);
}

// Cuts off and returns what stands behind the first `mark`, if there is one.
std::optional<std::string_view> cutBehind(std::string_view& text, char mark) {
  const std::size_t position = text.find(mark);
  if (position == text.npos) return std::nullopt;
  const std::string_view rest = text.substr(position + 1);
  text = text.substr(0, position);
  return rest;
}

// `path` ends with a slash, or is empty: takes its last segment off. False when there is none that
// stands for a folder.
bool removeLastSegment(std::string& path, bool isRooted) {
  if (path.size() <= (isRooted ? 1 : 0)) return false;
  if (!isRooted && (path == "../" || path.ends_with("/../"))) return false;
  const std::size_t slash = path.rfind('/', path.size() - 2);
  path.resize(path.size() < 2 || slash == path.npos ? 0 : slash + 1);
  return true;
}

std::string removeDotSegments(std::string_view path) {
  const bool isRooted = path.starts_with('/');
  const bool wasEmpty = path.empty();
  std::string result(isRooted ? "/" : "");
  result.reserve(path.size() + 2);
  if (isRooted) path.remove_prefix(1);
  while (!path.empty()) {
    const std::size_t slash = std::min(path.find('/'), path.size());
    const std::string_view segment = path.substr(0, slash);
    const std::string_view segmentWithSlash = path.substr(0, slash + 1);
    path.remove_prefix(segmentWithSlash.size());
    if (segment == ".") continue;
    if (segment != "..") {
      result += segmentWithSlash;
    } else if (!removeLastSegment(result, isRooted) && !isRooted) {
      result += "../";
    }
  }
  if (!isRooted && !wasEmpty && (result.empty() || result[0] == '/')) result.insert(0, "./");
  return result;
}

// Section 5.3. A path that would read as an authority or a scheme gets a dot segment in front.
std::string compose(const URIReference& parts) {
  std::string text;
  if (parts.scheme) (text += *parts.scheme) += ':';
  if (parts.authority) (text += "//") += *parts.authority;
  if (!parts.authority && parts.path.starts_with("//")) text += "/.";
  const std::string_view firstSegment = parts.path.substr(0, parts.path.find('/'));
  if (text.empty() && firstSegment.find(':') != firstSegment.npos) text += "./";
  text += parts.path;
  if (parts.query) (text += '?') += *parts.query;
  if (parts.fragment) (text += '#') += *parts.fragment;
  return text;
}

// Section 5.2.3.
std::string mergedPath(const URIReference& base, std::string_view path) {
  std::string result;
  if (base.authority && base.path.empty()) result = '/';
  result += base.path.substr(0, base.path.rfind('/') + 1);
  return result += path;
}

}  // namespace

std::optional<URIReference> URIReference::parse(std::string_view text) {
  URIReference parts;
  parts.fragment = cutBehind(text, '#');
  parts.query = cutBehind(text, '?');
  const std::size_t mark = text.find_first_of(":/");
  if (mark != text.npos && text[mark] == ':') {
    parts.scheme = text.substr(0, mark);
    if (!isScheme(*parts.scheme)) return std::nullopt;
    text.remove_prefix(mark + 1);
  }
  if (text.starts_with("//")) {
    text.remove_prefix(2);
    const std::size_t end = std::min(text.find('/'), text.size());
    parts.authority = text.substr(0, end);
    if (!isAuthority(*parts.authority)) return std::nullopt;
    text.remove_prefix(end);
  }
  parts.path = text;
  const bool isValid = holdsOnly(parts.path, ":@/") &&
                       holdsOnly(parts.query.value_or(""), ":@/?") &&
                       holdsOnly(parts.fragment.value_or(""), ":@/?");
  return isValid ? std::optional(parts) : std::nullopt;
}

std::optional<std::string_view> URIReference::host() const {
  if (!authority) return std::nullopt;
  return splitAuthority(*authority).host;
}

std::optional<std::uint16_t> URIReference::port() const {
  const std::string_view digits = splitAuthority(authority.value_or("")).port;
  std::uint16_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc() ? std::optional(value) : std::nullopt;
}

std::string URIReference::withoutDotSegments() const {
  const std::string cleanPath = removeDotSegments(path);
  URIReference target = *this;
  target.path = cleanPath;
  return compose(target);
}

std::string URIReference::resolvedAgainst(const URIReference& base) const {
  if (scheme) return withoutDotSegments();
  URIReference target = *this;
  target.scheme = base.scheme;
  if (authority) return target.withoutDotSegments();
  target.authority = base.authority;
  if (path.starts_with('/')) return target.withoutDotSegments();
  if (path.empty()) {
    target.path = base.path;
    if (!query) target.query = base.query;
    return compose(target);
  }
  const std::string merged = mergedPath(base, path);
  target.path = merged;
  return target.withoutDotSegments();
}

}  // namespace foundation
