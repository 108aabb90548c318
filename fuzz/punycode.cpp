#include <cstdint>
#include <cstdlib>

#include "ZCommons/Network/NSStringPunycodeAdditions.h"
#include "foundation/Data.h"
#include "fuzz/PlainPunycode.h"

// Both directions give what the plain loops give, and the way back leads to where it began.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  using namespace NSStringPunycodeAdditions;
  const std::string text(foundation::textOf({bytes, length}));
  const std::u32string label = longCharactersWithCount(text);
  const auto punycode = punycodeEncodedString(text);
  if (punycode != fuzz::PlainPunycode::encode(label)) std::abort();
  if (punycode && punycodeDecodedString(*punycode) != foundation::UTF8FromUTF32(label))
    std::abort();
  if (punycodeDecodedString(text) != fuzz::PlainPunycode::decode(text)) std::abort();
  return 0;
}
