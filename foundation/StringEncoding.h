#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Data.h"

namespace foundation {

/// How bytes stand for text, with the platform's numbers.
enum class StringEncoding : unsigned {
  ASCII = 1,
  UTF8 = 4,
  ISOLatin1 = 5,
};

/// Whether the bytes are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates).
bool isValidUTF8(std::string_view text);

/// One character of a UTF-8 text.
struct Character {
  std::int32_t codePoint;  ///< negative when the bytes are not UTF-8
  std::size_t length;      ///< bytes
};

/// The first character of `text`, which is not empty. Bytes that are not UTF-8 count as one
/// character for each longest piece that could begin one (Unicode, section 3.9).
Character firstCharacter(std::string_view text);

/// The text that `data` is in `encoding`, as UTF-8; nothing when the bytes are not of that
/// encoding. ISO Latin-1 never fails. Every line end and zero byte is kept.
std::optional<std::string> stringFromData(DataView data, StringEncoding encoding);

/// The bytes that stand for UTF-8 `text` in `encoding`; nothing when the text holds a character
/// that the encoding lacks, or is not UTF-8.
std::optional<Data> dataFromString(std::string_view text, StringEncoding encoding);

}  // namespace foundation
