#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace foundation {

/// stringByAddingPercentEscapes:
///
/// `text` with every character escaped ("%" and two upper-case hexadecimal digits for each byte of
/// its UTF-8 form) that is illegal in URLs: all but `A-Z a-z 0-9 - _ . ! ~ * ' ( ) ; / ? : @ & = +
/// $ ,`. The ASCII characters of `unescaped` are left alone all the same, those of `escaped` are
/// escaped in any case. Bytes that are not UTF-8 are escaped as they are. Any thread.
std::string stringByAddingPercentEscapes(std::string_view text, std::string_view unescaped = {},
                                         std::string_view escaped = {});

/// `text` with every escape replaced by the byte it stands for, whatever encoding the bytes are in.
/// Nothing when an escape is malformed. Any thread.
std::optional<std::string> bytesByReplacingPercentEscapes(std::string_view text);

/// stringByReplacingPercentEscapes:
///
/// As above, and nothing when the result is not UTF-8.
std::optional<std::string> stringByReplacingPercentEscapes(std::string_view text);

}  // namespace foundation
