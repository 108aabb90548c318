#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>

#include "ZCommons/IO/NSDataUtils.h"

// The bytes that a text stands for are those of the text without what is skipped, and encode to it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const foundation::DataView text(bytes, length);
  const foundation::Data data = NSDataUtils::base64Decoded(text);
  const std::string encoded = NSDataUtils::base64Encoded(data);
  if (NSDataUtils::base64Decoded(foundation::dataOf(encoded)) != data) std::abort();
  std::string kept;
  for (const std::uint8_t byte : text) {
    if (byte == '=') break;
    if (byte < 0x80 && (std::isalnum(byte) || byte == '+' || byte == '/')) {
      kept += static_cast<char>(byte);
    }
  }
  // The last character of a group that is cut may hold bits that no whole byte takes.
  const std::size_t sure = kept.size() / 4 * 4;
  if (encoded.compare(0, sure, kept, 0, sure) != 0) std::abort();
  if (data.size() != kept.size() * 3 / 4) std::abort();
  return 0;
}
