#include "foundation/Format.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace foundation {
namespace {

constexpr std::string_view nullText = "(null)";

// Bound on width and precision: what a format may ask for is not what it may allocate.
constexpr int fieldLimit = 4096;

struct Conversion {
  std::string_view flags = "";
  int width = 0;
  int precision = -1;
  char letter = '@';

  bool isPlain() const { return flags.empty() && width == 0 && precision < 0; }
  bool has(char flag) const { return flags.find(flag) != std::string_view::npos; }
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

int readNumber(std::string_view text, std::size_t& position) {
  int number = 0;
  for (; position < text.size() && isDigit(text[position]); ++position) {
    number = std::min(number * 10 + (text[position] - '0'), fieldLimit);
  }
  return number;
}

Conversion parse(std::string_view text) {
  Conversion result;
  std::size_t position = 1;
  const std::size_t flagsEnd = std::min(text.find_first_not_of("-+ #0", position), text.size() - 1);
  result.flags = text.substr(position, flagsEnd - position);
  position = flagsEnd;
  result.width = readNumber(text, position);
  if (text[position] == '.') {
    ++position;
    result.precision = readNumber(text, position);
  }
  result.letter = text.back();
  return result;
}

// Length of the conversion that starts at the "%" of `text`, or 0 when there is none.
std::size_t conversionLength(std::string_view text) {
  std::size_t position = text.find_first_not_of("-+ #0", 1);
  if (position == std::string_view::npos) return 0;
  while (position < text.size() && isDigit(text[position])) ++position;
  if (position < text.size() && text[position] == '.') ++position;
  while (position < text.size() && isDigit(text[position])) ++position;
  position = text.find_first_not_of("hlqjzt", position);
  if (position == std::string_view::npos) return 0;
  constexpr std::string_view letters = "@sdiuxXofFeEgGcp";
  return letters.find(text[position]) == std::string_view::npos ? 0 : position + 1;
}

void appendPadded(std::string& output, std::string_view text, const Conversion& field) {
  const auto width = static_cast<std::size_t>(field.width);
  const std::size_t padding = width > text.size() ? width - text.size() : 0;
  if (!field.has('-')) output.append(padding, ' ');
  output += text;
  if (field.has('-')) output.append(padding, ' ');
}

template <class Integer>
void appendDecimal(std::string& output, Integer value, int base = 10) {
  char digits[24];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), value, base).ptr;
  output.append(digits, end);
}

// printf with a conversion rebuilt from checked pieces.
template <class Value>
void appendPrinted(std::string& output, const Conversion& field, std::string_view conversion,
                   Value value) {
  std::string pattern = "%";
  pattern += field.flags;
  if (field.width > 0) pattern += std::to_string(field.width);
  if (field.precision >= 0) pattern.append(".").append(std::to_string(field.precision));
  pattern += conversion;
  const int length = std::snprintf(nullptr, 0, pattern.c_str(), value);
  if (length <= 0) return;
  const std::size_t start = output.size();
  output.resize(start + static_cast<std::size_t>(length));
  std::snprintf(output.data() + start, static_cast<std::size_t>(length) + 1, pattern.c_str(),
                value);
}

// The first `count` code points of UTF-8 text.
std::string_view prefix(std::string_view text, int count) {
  std::size_t end = 0;
  for (; count > 0 && end < text.size(); --count) {
    ++end;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
  }
  return text.substr(0, end);
}

void appendCodePoint(std::string& output, std::uint64_t value) {
  if (value < 0x80) {
    output += static_cast<char>(value);
  } else if (value < 0x100) {
    output += static_cast<char>(0xC0 | (value >> 6));
    output += static_cast<char>(0x80 | (value & 0x3F));
  } else {
    output += '?';
  }
}

}  // namespace

std::uint64_t FormatArgument::bits() const {
  if (width_ == sizeof(std::uint64_t)) return unsigned_;
  return unsigned_ & ((std::uint64_t{1} << (width_ * 8)) - 1);
}

void FormatArgument::appendDescription(std::string& output) const {
  switch (kind_) {
    case Kind::null:
      output += nullText;
      return;
    case Kind::signedInteger:
      appendDecimal(output, signed_);
      return;
    case Kind::unsignedInteger:
      appendDecimal(output, unsigned_);
      return;
    case Kind::real:
      appendPrinted(output, Conversion{}, "g", real_);
      return;
    case Kind::text:
      output += text_;
      return;
    case Kind::pointer:
      output += "0x";
      appendDecimal(output, reinterpret_cast<std::uintptr_t>(pointer_), 16);
      return;
    case Kind::object:
      output += object_.describe(object_.object);
      return;
  }
}

// What most formats ask for, without printf; false for other conversions.
bool FormatArgument::appendPlainInteger(std::string& output, char letter) const {
  switch (letter) {
    case 'd':
    case 'i':
      appendDescription(output);
      return true;
    case 'u':
      appendDecimal(output, bits());
      return true;
    case 'x':
      appendDecimal(output, bits(), 16);
      return true;
    default:
      return false;
  }
}

void FormatArgument::appendInteger(std::string& output, std::string_view conversion) const {
  const bool integer = kind_ == Kind::signedInteger || kind_ == Kind::unsignedInteger;
  if (!integer) return appendText(output, conversion);
  const Conversion field = parse(conversion);
  if (field.isPlain() && appendPlainInteger(output, field.letter)) return;
  switch (field.letter) {
    case 'd':
    case 'i':
      if (kind_ == Kind::unsignedInteger) return appendPrinted(output, field, "llu", unsigned_);
      return appendPrinted(output, field, "lld", signed_);
    case 'u':
      return appendPrinted(output, field, "llu", bits());
    case 'x':
      return appendPrinted(output, field, "llx", bits());
    case 'X':
      return appendPrinted(output, field, "llX", bits());
    case 'o':
      return appendPrinted(output, field, "llo", bits());
    default:
      break;
  }
  std::string character;
  appendCodePoint(character, bits());
  appendPadded(output, character, field);
}

void FormatArgument::appendReal(std::string& output, std::string_view conversion) const {
  if (kind_ != Kind::real) return appendText(output, conversion);
  const Conversion field = parse(conversion);
  appendPrinted(output, field, std::string_view(&field.letter, 1), real_);
}

void FormatArgument::appendText(std::string& output, std::string_view conversion) const {
  const Conversion field = parse(conversion);
  if (field.isPlain()) return appendDescription(output);
  std::string text;
  appendDescription(text);
  const bool cut = field.precision >= 0 && (field.letter == '@' || field.letter == 's');
  appendPadded(output, cut ? prefix(text, field.precision) : std::string_view(text), field);
}

void FormatArgument::appendTo(std::string& output, std::string_view conversion) const {
  if (conversion == "%@") return appendDescription(output);
  switch (conversion.back()) {
    case '@':
    case 's':
      return appendText(output, conversion);
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
      return appendReal(output, conversion);
    case 'p':
      break;
    default:
      return appendInteger(output, conversion);
  }
  const void* address = kind_ == Kind::object ? object_.object : pointer_;
  const bool isAddress = kind_ == Kind::object || kind_ == Kind::pointer;
  if (isAddress) return FormatArgument(address).appendText(output, conversion);
  if (kind_ == Kind::null) return FormatArgument("0x0").appendText(output, "%s");
  appendText(output, conversion);
}

std::string formatArguments(std::string_view format, std::span<const FormatArgument> arguments) {
  const FormatArgument missing(nullptr);
  std::string output;
  output.reserve(format.size() + arguments.size() * 24);
  std::size_t next = 0;
  while (true) {
    const std::size_t percent = std::min(format.find('%'), format.size());
    output += format.substr(0, percent);
    format.remove_prefix(percent);
    if (format.empty()) return output;
    if (format.starts_with("%%")) {
      output += '%';
      format.remove_prefix(2);
      continue;
    }
    const std::size_t length = conversionLength(format);
    if (length == 0) {
      output += '%';
      format.remove_prefix(1);
      continue;
    }
    const FormatArgument& argument = next < arguments.size() ? arguments[next] : missing;
    argument.appendTo(output, format.substr(0, length));
    ++next;
    format.remove_prefix(length);
  }
}

}  // namespace foundation
