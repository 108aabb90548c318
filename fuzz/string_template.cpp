#include <cstdint>
#include <cstdlib>
#include <utility>

#include "ZCommons/Text/ZCStringTemplate.h"
#include "foundation/RegularExpression.h"

using foundation::RegularExpression;

namespace {

// Has each name, with its placeholder as value, so that filling gives the template's text back.
struct Echo {
  using Entry = std::pair<std::string_view, std::string>;
  std::optional<Entry> find(std::string_view name) const {
    return Entry(name, "${" + std::string(name) + "}");
  }
  std::nullopt_t end() const { return std::nullopt; }
};

}  // namespace

// Parts are those that the placeholder's expression tells, and together the whole text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  static const auto placeholder =
      *RegularExpression::regularExpressionWithPattern("\\$\\{([a-zA-Z0-9]+)\\}");
  std::string_view text = foundation::textOf({bytes, length});
  const auto parsed = ZCStringTemplate::initWithString(text);
  if (!parsed) return text.empty() ? 0 : (std::abort(), 0);
  if (parsed->stringFromTemplateWithParameters(Echo()) != text) std::abort();
  bool afterLiteral = false;
  for (const StringTemplatePart& part : parsed->parts()) {
    const auto match = placeholder.firstMatchInString(text);
    const std::size_t start = match ? match->front()->location : text.size();
    if (!part.parameterName()) {
      if (afterLiteral || part.stringPart()->empty() || part.stringPart()->size() != start)
        std::abort();
      text.remove_prefix(start);
    } else {
      if (!match || start != 0) std::abort();
      text.remove_prefix(match->front()->length);
    }
    afterLiteral = !part.parameterName();
  }
  return 0;
}
