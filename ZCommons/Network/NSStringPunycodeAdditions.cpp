#include "ZCommons/Network/NSStringPunycodeAdditions.h"

#include <algorithm>
#include <cstddef>

#include "ZCommons/Network/ZCNPunycode.h"
#include "foundation/PercentEscape.h"
#include "foundation/StringEncoding.h"
#include "foundation/Unicode.h"

namespace {

constexpr std::string_view missingValue = "(null)";
constexpr std::string_view encodedPrefix = "xn--";

bool isHostSeparator(char c) { return c == '.' || c == '@'; }
bool isURLSeparator(char c) { return c == ':' || c == '/'; }
bool isUserSeparator(char c) { return c == ':' || c == '@'; }

// Cuts a text into tokens. White space and line breaks in front of a token are skipped.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text), rest_(text) {}

  // Whether nothing but white space is left.
  bool isAtEnd() {
    skip();
    return rest_.empty();
  }

  // What has been read so far, skipped characters included.
  std::string_view read() const { return text_.substr(0, text_.size() - rest_.size()); }

  // The characters up to the first ASCII one for which `isStop` is true.
  template <class Stop>
  std::string_view upTo(Stop isStop) {
    skip();
    const auto end = std::find_if(rest_.begin(), rest_.end(), isStop);
    return token(static_cast<std::size_t>(end - rest_.begin()));
  }

  // The run of ASCII characters for which `isMember` is true.
  template <class Member>
  std::string_view run(Member isMember) {
    return upTo([&](char c) { return !isMember(c); });
  }

  std::string_view upToLineBreak() {
    skip();
    std::size_t length = 0;
    while (length < rest_.size()) {
      const foundation::Character character = foundation::firstCharacter(rest_.substr(length));
      if (foundation::isNewline(static_cast<char32_t>(character.codePoint))) break;
      length += character.length;
    }
    return token(length);
  }

  void skipOne() { rest_.remove_prefix(1); }

 private:
  void skip() {
    while (!rest_.empty()) {
      const auto byte = static_cast<unsigned char>(rest_.front());
      if (byte > ' ' && byte < 0x80) return;
      const foundation::Character character = foundation::firstCharacter(rest_);
      if (!foundation::isWhitespaceOrNewline(static_cast<char32_t>(character.codePoint))) return;
      rest_.remove_prefix(character.length);
    }
  }

  std::string_view token(std::size_t length) {
    const std::string_view result = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return result;
  }

  std::string_view text_;
  std::string_view rest_;
};

// Whether no character is white space, a control character, or beyond ASCII.
bool isPlain(std::string_view text) {
  // Without an early exit the loop runs on vectors.
  bool plain = true;
  for (const char c : text) plain &= static_cast<unsigned char>(c - '!') <= 0x7F - '!';
  return plain;
}

bool needsEncoding(std::string_view label) {
  return !foundation::isASCII(label) || label.find('\0') != label.npos;
}

void appendEncodedLabel(std::string& output, std::string_view label) {
  if (!needsEncoding(label)) {
    output += label;
    return;
  }
  output += encodedPrefix;
  if (!ZCNPunycode::appendEncoded(label, output)) output += missingValue;
}

bool startsWithEncodedPrefix(std::string_view label) {
  return label.size() >= encodedPrefix.size() && (label[0] | 0x20) == 'x' &&
         (label[1] | 0x20) == 'n' && label.substr(2).starts_with("--");
}

void appendDecodedLabel(std::string& output, std::string_view label) {
  if (startsWithEncodedPrefix(label)) {
    ZCNPunycode::appendDecoded(label.substr(encodedPrefix.size()), output);
  } else {
    output += label;
  }
}

template <class AppendLabel>
std::string convertLabels(std::string_view host, AppendLabel appendLabel) {
  std::string result;
  result.reserve(host.size());
  for (Scanner scanner(host); !scanner.isAtEnd();) {
    appendLabel(result, scanner.upTo(isHostSeparator));
    result += scanner.run(isHostSeparator);
  }
  return result;
}

std::string encodeNormalised(std::string_view host) {
  return convertLabels(host, appendEncodedLabel);
}

// Whether the UTF-16 unit at `index` is a ":"; there may be none.
bool hasColonAtUnit(std::string_view text, std::size_t index) {
  while (!text.empty() && index > 0) {
    const foundation::Character character = foundation::firstCharacter(text);
    const std::size_t units = character.codePoint > 0xFFFF ? 2 : 1;
    if (index < units) return false;
    index -= units;
    text.remove_prefix(character.length);
  }
  return text.starts_with(':');
}

}  // namespace

namespace NSStringPunycodeAdditions {

std::optional<std::string> punycodeEncodedString(std::string_view label) {
  std::optional<std::string> result(std::in_place);
  if (!ZCNPunycode::appendEncoded(label, *result)) result.reset();
  return result;
}

std::optional<std::string> punycodeDecodedString(std::string_view text) {
  std::optional<std::string> result(std::in_place);
  if (!ZCNPunycode::appendDecoded(text, *result)) result.reset();
  return result;
}

std::string IDNAEncodedString(std::string_view host) {
  if (isPlain(host)) return std::string(host);
  if (foundation::isASCII(host)) return encodeNormalised(host);
  return encodeNormalised(foundation::precomposedStringWithCompatibilityMapping(host));
}

std::string IDNADecodedString(std::string_view host) {
  return convertLabels(host, appendDecodedLabel);
}

Parts URLParts(std::string_view text) {
  const std::string normalised = foundation::precomposedStringWithCompatibilityMapping(text);
  Scanner scanner(normalised);
  Parts parts;
  parts.host = scanner.upTo(isURLSeparator);
  // Callers rely on the colon being looked for in the text as it was given, where it stands
  // elsewhere if normalisation has moved it: a full-width one makes no scheme.
  if (!parts.host.empty() && !scanner.isAtEnd() &&
      hasColonAtUnit(text, foundation::UTF16Length(scanner.read()))) {
    parts.scheme = parts.host;
    parts.delim = scanner.run(isURLSeparator);
    if (!scanner.isAtEnd()) parts.host = scanner.upTo(isURLSeparator);
  }
  parts.path = scanner.upTo([](char c) { return c == '#'; });
  if (!scanner.isAtEnd()) {
    scanner.skipOne();
    const std::string_view fragment = scanner.upToLineBreak();
    if (!fragment.empty()) parts.fragment = fragment;
  }
  splitHost(parts);
  return parts;
}

void splitHost(Parts& parts) {
  const std::string host = parts.host;
  Scanner scanner(host);
  const std::string_view first = scanner.upTo(isUserSeparator);
  if (scanner.isAtEnd()) return;
  const bool hasPassword = scanner.run(isUserSeparator).starts_with(':');
  if (hasPassword) {
    const std::string_view password = scanner.upTo(isUserSeparator);
    scanner.run(isUserSeparator);
    if (scanner.isAtEnd()) return;
    parts.password = password;
  }
  if (!first.empty()) parts.username = first;
  parts.host = scanner.upTo(isUserSeparator);
}

std::string encodedURLString(std::string_view text) {
  const Parts parts = URLParts(text);
  std::string result = parts.scheme + parts.delim;
  if (parts.username) {
    result += *parts.username;
    if (parts.password) (result += ':') += *parts.password;
    result += '@';
  }
  result += encodeNormalised(parts.host);
  result += foundation::stringByAddingPercentEscapes(parts.path, "%");
  if (parts.fragment) (result += '#') += *parts.fragment;
  return result;
}

std::string decodedURLString(std::string_view text) {
  const Parts parts = URLParts(text);
  std::string result = parts.scheme + parts.delim;
  result += IDNADecodedString(parts.host);
  result +=
      foundation::stringByReplacingPercentEscapes(parts.path).value_or(std::string(missingValue));
  if (parts.fragment) (result += '#') += *parts.fragment;
  return result;
}

std::u32string longCharactersWithCount(std::string_view text) {
  return foundation::UTF32FromUTF8(text);
}

}  // namespace NSStringPunycodeAdditions
