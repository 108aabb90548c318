#include "ZDomain/vendors/fmdb/FMStatementRecogniser.h"

#include "foundation/StringEncoding.h"

std::string_view FMStatementRecogniser::prefix(std::string_view text, std::size_t units) {
  // A text never has more units than bytes.
  if (text.size() <= units) return text;
  std::size_t length = 0;
  while (length < text.size()) {
    const foundation::Character next = foundation::firstCharacter(text.substr(length));
    const std::size_t width = next.codePoint > 0xFFFF ? 2 : 1;
    if (width > units) break;
    units -= width;
    length += next.length;
  }
  return text.substr(0, length);
}
