#include <cstdint>
#include <cstdlib>

#include "ZCommons/Lang/ZCLWildcard.h"
#include "foundation/Data.h"

// Up to the first zero byte a wildcard, behind it a text: its own matcher and its expression agree.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const std::string_view input = foundation::textOf({bytes, length});
  const std::size_t end = std::min(input.find('\0'), input.size());
  const std::string_view text = input.substr(std::min(end + 1, input.size()));
  const auto wildcard = ZCLWildcard::wildcard(input.substr(0, end));
  if (!wildcard) return 0;
  const bool matches = wildcard->matchWildcard(text);
  const auto match = wildcard->firstMatchInString(text);
  const bool isWhole = match && match->front()->length == text.size() && !text.empty();
  const bool hasShortcut = text.find(wildcard->shortcut()) != std::string_view::npos;
  if (matches != (isWhole && hasShortcut)) std::abort();
  return 0;
}
