#include "platform/linux/DesktopEntry.h"

#include <algorithm>
#include <utility>

#include "platform/linux/KeyFile.h"

namespace platform {
namespace {

/// Resolves the escapes of a value of type string: \s \n \t \r \\.
std::string unescaped(std::string_view value) {
  std::string result;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      result += value[i];
      continue;
    }
    switch (value[++i]) {
      case 's':
        result += ' ';
        break;
      case 'n':
        result += '\n';
        break;
      case 't':
        result += '\t';
        break;
      case 'r':
        result += '\r';
        break;
      case '\\':
        result += '\\';
        break;
      default:
        (result += '\\') += value[i];
    }
  }
  return result;
}

/// Splits a command at blanks; a part in double quotes may hold blanks, and backslashes that stand
/// before the character they quote.
std::vector<std::string> splitCommand(std::string_view command) {
  std::vector<std::string> words;
  bool quoted = false;
  bool inWord = false;
  for (std::size_t i = 0; i < command.size(); ++i) {
    char character = command[i];
    if (!quoted && (character == ' ' || character == '\t' || character == '\n')) {
      inWord = false;
      continue;
    }
    if (!inWord) words.emplace_back();
    inWord = true;
    if (character == '"') {
      quoted = !quoted;
      continue;
    }
    if (character == '\\' && quoted && i + 1 < command.size()) character = command[++i];
    words.back() += character;
  }
  return words;
}

/// Keeps the name of the best language seen so far.
class NameChoice {
 public:
  explicit NameChoice(const std::vector<std::string>& localeKeys) : keys_(localeKeys) {}

  /// Takes a "Name" or "Name[key]" line's value when none so good was there before.
  void offer(std::string_view key, std::string_view value) {
    const std::size_t rank = rankOf(key);
    if (rank >= rank_) return;
    rank_ = rank;
    name_ = unescaped(value);
  }

  std::optional<std::string> take() { return std::move(name_); }

 private:
  std::size_t rankOf(std::string_view key) const {
    if (key == "Name") return keys_.size();
    if (!key.starts_with("Name[") || !key.ends_with(']')) return keys_.size() + 1;
    key = key.substr(5, key.size() - 6);
    const auto found = std::find(keys_.begin(), keys_.end(), key);
    return found == keys_.end() ? keys_.size() + 1
                                : static_cast<std::size_t>(found - keys_.begin());
  }

  const std::vector<std::string>& keys_;
  std::size_t rank_ = keys_.size() + 1;
  std::optional<std::string> name_;
};

void setKey(DesktopEntry& entry, std::string_view key, std::string_view value) {
  if (key == "Type") entry.isApplication = value == "Application";
  if (key == "Hidden") entry.hidden = value == "true";
  if (key == "NoDisplay") entry.noDisplay = value == "true";
  if (key == "Icon") entry.icon = unescaped(value);
  if (key == "TryExec") entry.tryExec = unescaped(value);
  if (key == "Exec") entry.command = splitCommand(unescaped(value));
}

}  // namespace

DesktopEntry DesktopEntry::parse(std::string_view text,
                                 const std::vector<std::string>& localeKeys) {
  DesktopEntry entry;
  NameChoice name(localeKeys);
  KeyFileReader keys(text);
  bool inGroup = false;
  while (keys.next()) {
    if (keys.group() != "Desktop Entry") {
      if (inGroup) break;
      continue;
    }
    inGroup = true;
    name.offer(keys.key(), keys.value());
    setKey(entry, keys.key(), keys.value());
  }
  entry.name = name.take();
  return entry;
}

std::vector<std::string> desktopEntryLocaleKeys(std::string_view locale) {
  if (locale.empty() || locale == "POSIX" || locale == "C" || locale.starts_with("C.")) return {};
  const std::size_t at = locale.find('@');
  const std::string modifier(at == std::string_view::npos ? "" : locale.substr(at));
  const std::string_view place = locale.substr(0, locale.find_first_of(".@"));
  const std::string_view language = place.substr(0, place.find('_'));

  std::vector<std::string> keys;
  for (const std::string_view base : {place, language}) {
    if (!modifier.empty()) keys.push_back(std::string(base) + modifier);
    keys.emplace_back(base);
    if (place == language) break;
  }
  return keys;
}

}  // namespace platform
