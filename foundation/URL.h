#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace foundation {

/// An immutable URL: a place in the file system, or any other resource by its text.
///
/// A file URL is absolute, knows its path, and ends with a slash when it names a folder. It prints
/// as its absolute string (RFC 8089, "file:///var/lib/"), with every byte escaped that a path of
/// RFC 3986 may not hold, and the semicolon.
///
///     const URL logs = URL::fileURLWithPath("/var/log", URL::Kind::directory);
///     const URL file = logs.URLByAppendingPathComponent("a b.log");   // file:///var/log/a%20b.log
class URL {
 public:
  enum class Kind { file, directory };

  /// A file URL for `path`, which is made absolute against "/" when it is relative. A path that
  /// ends with a slash names a folder whatever `kind` says. The bytes are kept as they are.
  static URL fileURLWithPath(std::string_view path, Kind kind = Kind::file);

  /// A URL from its text. A "file:" text with an empty or "localhost" authority becomes a file
  /// URL, its escapes resolved; other texts need a scheme (RFC 3986, section 3.1) and are kept.
  /// Nothing for a text without a scheme, and for a file URL with a malformed escape or a zero
  /// byte.
  static std::optional<URL> URLWithString(std::string_view text);

  bool isFileURL() const { return isFile_; }

  /// Whether a file URL names a folder, that is, ends with a slash.
  bool hasDirectoryPath() const { return isFile_ && text_.ends_with('/'); }

  /// The path of a file URL, without a slash at the end except for "/"; empty for other URLs.
  std::string_view path() const;

  /// The last component of a file URL's path; "/" for the root, empty for other URLs.
  std::string_view lastPathComponent() const;

  /// A file URL one component further down; other URLs are returned as they are.
  URL URLByAppendingPathComponent(std::string_view component, Kind kind = Kind::file) const;

  std::string absoluteString() const;

  /// What log lines print: the absolute string.
  std::string description() const { return absoluteString(); }

  friend bool operator==(const URL&, const URL&) = default;

 private:
  URL(std::string text, bool isFile) : text_(std::move(text)), isFile_(isFile) {}

  std::string text_;  // the path, as bytes, of a file URL; else the absolute string
  bool isFile_;
};

}  // namespace foundation
