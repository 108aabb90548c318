#include "foundation/URL.h"

#include <algorithm>
#include <array>

namespace foundation {
namespace {

constexpr std::array<bool, 256> makePathCharacters() {
  std::array<bool, 256> table{};
  constexpr std::string_view kept =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,=:@/";
  for (const char c : kept) table[static_cast<unsigned char>(c)] = true;
  return table;
}

constexpr std::array<bool, 256> pathCharacters = makePathCharacters();

void appendEscaped(std::string& output, std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (pathCharacters[byte]) {
      output += c;
    } else {
      output += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
}

int hexadecimalValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

std::optional<std::string> unescaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    if (i + 2 >= text.size()) return std::nullopt;
    const int high = hexadecimalValue(text[i + 1]);
    const int low = hexadecimalValue(text[i + 2]);
    if (high < 0 || low < 0 || high + low == 0) return std::nullopt;
    result += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return result;
}

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string_view schemeOf(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || !isLetter(text[0])) return {};
  const std::string_view scheme = text.substr(0, colon);
  const bool valid = std::all_of(scheme.begin(), scheme.end(), [](char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
  });
  return valid ? scheme : std::string_view();
}

bool isFileScheme(std::string_view scheme) {
  constexpr std::string_view file = "file";
  return std::equal(scheme.begin(), scheme.end(), file.begin(), file.end(),
                    [](char a, char b) { return (a | 0x20) == b; });
}

}  // namespace

URL URL::fileURLWithPath(std::string_view path, Kind kind) {
  std::string text;
  text.reserve(path.size() + 2);
  if (!path.starts_with('/')) text += '/';
  text += path;
  if (kind == Kind::directory && !text.ends_with('/')) text += '/';
  return URL(std::move(text), true);
}

std::optional<URL> URL::URLWithString(std::string_view text) {
  const std::string_view scheme = schemeOf(text);
  if (scheme.empty()) return std::nullopt;
  if (!isFileScheme(scheme)) return URL(std::string(text), false);
  std::string_view rest = text.substr(scheme.size() + 1);
  if (rest.starts_with("//")) {
    rest.remove_prefix(2);
    if (rest.starts_with("localhost/")) rest.remove_prefix(9);
  }
  if (!rest.starts_with('/')) return URL(std::string(text), false);
  std::optional<std::string> path = unescaped(rest.substr(0, rest.find_first_of("?#")));
  if (!path) return std::nullopt;
  return URL(*std::move(path), true);
}

std::string_view URL::path() const {
  if (!isFile_) return {};
  std::string_view path = text_;
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path;
}

std::string_view URL::lastPathComponent() const {
  const std::string_view whole = path();
  if (whole == "/") return whole;
  return whole.substr(whole.rfind('/') + 1);
}

URL URL::URLByAppendingPathComponent(std::string_view component, Kind kind) const {
  if (!isFile_) return *this;
  std::string text;
  text.reserve(text_.size() + component.size() + 2);
  text += text_;
  if (!text.ends_with('/')) text += '/';
  text += component;
  if (kind == Kind::directory && !text.ends_with('/')) text += '/';
  return URL(std::move(text), true);
}

std::string URL::absoluteString() const {
  if (!isFile_) return text_;
  std::string result;
  result.reserve(7 + text_.size() + 8);
  result += "file://";
  appendEscaped(result, text_);
  return result;
}

}  // namespace foundation
