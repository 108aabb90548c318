#include "foundation/StringEncoding.h"

#include <algorithm>

#include <unicode/utf8.h>

#include "foundation/Unicode.h"

namespace foundation {
namespace {

std::string fromLatin1(DataView data) {
  std::string text;
  text.reserve(data.size());
  for (const std::uint8_t byte : data) {
    if (byte < 0x80) {
      text += static_cast<char>(byte);
    } else {
      text += static_cast<char>(0xC0 | (byte >> 6));
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::optional<Data> toLatin1(std::string_view text) {
  Data data;
  data.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) {
      data.push_back(lead);
      continue;
    }
    if (lead != 0xC2 && lead != 0xC3) return std::nullopt;
    if (++i == text.size()) return std::nullopt;
    const auto trail = static_cast<unsigned char>(text[i]);
    if ((trail & 0xC0) != 0x80) return std::nullopt;
    data.push_back(static_cast<std::uint8_t>(((lead & 3) << 6) | (trail & 0x3F)));
  }
  return data;
}

}  // namespace

bool isValidUTF8(std::string_view text) {
  std::size_t position = 0;
  while (position < text.size()) {
    if (static_cast<unsigned char>(text[position]) < 0x80) {
      ++position;
      continue;
    }
    const Character character = firstCharacter(text.substr(position));
    if (character.codePoint < 0) return false;
    position += character.length;
  }
  return true;
}

Character firstCharacter(std::string_view text) {
  // The macro takes 32-bit positions: give it the few bytes that one character can have.
  const auto available = static_cast<std::int32_t>(std::min<std::size_t>(text.size(), 4));
  const std::uint8_t* const bytes = dataOf(text).data();
  std::int32_t length = 0;
  UChar32 codePoint;
  U8_NEXT(bytes, length, available, codePoint);
  return {codePoint, static_cast<std::size_t>(length)};
}

std::optional<std::string> stringFromData(DataView data, StringEncoding encoding) {
  const std::string_view text = textOf(data);
  switch (encoding) {
    case StringEncoding::ISOLatin1:
      return fromLatin1(data);
    case StringEncoding::ASCII:
      if (!isASCII(text)) return std::nullopt;
      break;
    case StringEncoding::UTF8:
      if (!isValidUTF8(text)) return std::nullopt;
      break;
  }
  return std::string(text);
}

std::optional<Data> dataFromString(std::string_view text, StringEncoding encoding) {
  if (encoding == StringEncoding::ISOLatin1) return toLatin1(text);
  const bool fits = encoding == StringEncoding::ASCII ? isASCII(text) : isValidUTF8(text);
  if (!fits) return std::nullopt;
  const DataView bytes = dataOf(text);
  return Data(bytes.begin(), bytes.end());
}

}  // namespace foundation
