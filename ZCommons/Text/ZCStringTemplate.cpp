#include "ZCommons/Text/ZCStringTemplate.h"

namespace {

constexpr std::string_view opening = "${";
constexpr std::string_view nameCharacters =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

}  // namespace

void ZCStringTemplate::addLiteral(std::string_view text) {
  if (text.empty()) return;
  parts_.emplace_back().setStringPart(text);
  usualLength_ += text.size();
}

void ZCStringTemplate::addPlaceholder(std::string_view name) {
  constexpr std::size_t usualValueLength = 16;
  parts_.emplace_back().setParameterName(name);
  usualLength_ += usualValueLength;
}

std::optional<ZCStringTemplate> ZCStringTemplate::initWithString(foundation::NullableText text) {
  if (text.isNullOrEmpty()) return std::nullopt;
  const std::string_view source = text.view();
  ZCStringTemplate result;
  std::size_t last = 0;
  for (std::size_t start = source.find(opening); start != std::string_view::npos;) {
    const std::size_t name = start + opening.size();
    const std::size_t end = source.find_first_not_of(nameCharacters, name);
    if (end == std::string_view::npos) break;
    if (end > name && source[end] == '}') {
      result.addLiteral(source.substr(last, start - last));
      result.addPlaceholder(source.substr(name, end - name));
      last = end + 1;
    }
    start = source.find(opening, end);
  }
  result.addLiteral(source.substr(last));
  return result;
}
