#include <cstdint>
#include <cstdlib>

#include "ZCommons/Network/NSStringPunycodeAdditions.h"
#include "foundation/Data.h"
#include "foundation/StringEncoding.h"

// A text of any kind is cut, encoded and decoded; the parts hold nothing that separates them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  using namespace NSStringPunycodeAdditions;
  const std::string_view text = foundation::textOf({bytes, length});
  const Parts parts = URLParts(text);
  if (parts.scheme.find_first_of(":/") != std::string::npos) std::abort();
  if (parts.delim.find_first_not_of(":/") != std::string::npos) std::abort();
  if (parts.host.find_first_of(":/@") != std::string::npos) std::abort();
  if (parts.path.find('#') != std::string::npos || parts.password) std::abort();
  if (parts.fragment && parts.fragment->find_first_of("\n\v\f\r") != std::string::npos)
    std::abort();
  const std::string encoded = encodedURLString(text);
  if (!foundation::isValidUTF8(encoded)) std::abort();
  if (!foundation::isValidUTF8(decodedURLString(text))) std::abort();
  decodedURLString(encoded);
  IDNADecodedString(text);
  return 0;
}
