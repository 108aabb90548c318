#pragma once

#include <string_view>

namespace platform {

/// Reads a text of groups of keys, as desktop entries, icon themes and settings are
/// (freedesktop.org Desktop Entry format: "[Group]", "Key=Value", "#" before a comment), line by
/// line.
///
/// What is malformed is passed over, as are keys before the first group. The views are into the
/// text. One thread at a time.
///
///     KeyFileReader keys(text);
///     while (keys.next()) use(keys.group(), keys.key(), keys.value());
class KeyFileReader {
 public:
  explicit KeyFileReader(std::string_view text) : rest_(text) {}

  /// Goes to the next key; false at the end.
  bool next();

  std::string_view group() const { return group_; }
  std::string_view key() const { return key_; }
  std::string_view value() const { return value_; }

 private:
  std::string_view rest_;
  std::string_view group_;
  std::string_view key_;
  std::string_view value_;
};

}  // namespace platform
