#include "ZCommons/Data/ZCDProperty.h"

#include <vector>

namespace {

std::vector<std::string_view> separated(std::string_view text) {
  std::vector<std::string_view> items;
  while (true) {
    const std::size_t comma = text.find(',');
    items.push_back(text.substr(0, comma));
    if (comma == text.npos) return items;
    text.remove_prefix(comma + 1);
  }
}

bool occurs(std::string_view text, std::string_view in) { return in.find(text) != in.npos; }

}  // namespace

bool ZCDProperty::isPersistent(std::string_view attributes) {
  const std::vector<std::string_view> items = separated(attributes);
  const bool namesField = items.back().starts_with('V');
  for (std::size_t i = 1; i < items.size() - (namesField ? 1 : 0); ++i) {
    if (occurs(items[i], "W|R|P")) return false;
  }
  const std::string_view type = items.front().substr(items.front().empty() ? 0 : 1);
  return type.starts_with('@') || occurs(type, "c|i|s|l|q|C|I|S|L|f|d");
}

ZCDProperty ZCDProperty::make(std::string_view field, const std::string& type,
                              std::string_view flags, bool hasField, Getter get, Setter set) {
  std::string attributes = "T" + type + ",";
  attributes.append(flags).append("N");
  if (hasField) attributes.append(",V").append(field);
  if (field.ends_with('_')) field.remove_suffix(1);
  return {std::string(field), std::move(attributes), get, set};
}
