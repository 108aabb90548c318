#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace foundation {

/// An immutable URL: a place in the file system, or any other resource by its text, which may be a
/// relative reference.
///
/// A file URL is absolute, knows its path, and ends with a slash when it names a folder. It prints
/// as its absolute string (RFC 8089, "file:///var/lib/"): the text it was made from, or that of its
/// path, with every byte escaped that a path of RFC 3986 may not hold, and the semicolon.
///
///     const URL logs = URL::fileURLWithPath("/var/log", URL::Kind::directory);
///     const URL file = logs.URLByAppendingPathComponent("a b.log");   // file:///var/log/a%20b.log
class URL {
 public:
  /// What a path names.
  enum class Kind { file, directory };

  /// A file URL for `path`, which is made absolute against "/" when it is relative. A path that
  /// ends with a slash names a folder whatever `kind` says. The bytes are kept as they are.
  static URL fileURLWithPath(std::string_view path, Kind kind = Kind::file);

  /// A URL from its text, which is kept as it stands: a URI or a relative reference (RFC 3986,
  /// section 4.1). A "file:" text with an empty or "localhost" authority is a file URL, its path
  /// without escapes. Nothing for a text that is no such reference, and for a file URL with an
  /// escaped zero byte.
  static std::optional<URL> URLWithString(std::string_view text);

  /// URLWithString:relativeToURL:
  ///
  /// As above, resolved against `baseURL` (RFC 3986, section 5.2); null, or a base without a
  /// scheme, leaves a relative reference relative.
  static std::optional<URL> URLWithString(std::string_view text, const std::optional<URL>& baseURL);

  /// This URL without the "." and ".." in its path.
  URL standardizedURL() const;

  /// The scheme as it is spelled; nothing for a relative reference.
  std::optional<std::string> scheme() const;

  /// The host, percent escapes replaced, an IPv6 address without its brackets. Nothing when there
  /// is none, when it is empty, and when its escapes are not UTF-8.
  std::optional<std::string> host() const;

  /// The port; nothing when there is none, when it is 0, and when it is above 65535.
  std::optional<std::uint16_t> port() const;

  /// Whether this is a place in the file system of this machine.
  bool isFileURL() const { return !path_.empty(); }

  /// Whether a file URL names a folder, that is, ends with a slash.
  bool hasDirectoryPath() const { return path_.ends_with('/'); }

  /// The path of a file URL, without a slash at the end except for "/"; empty for other URLs.
  std::string_view path() const;

  /// The last component of a file URL's path; "/" for the root, empty for other URLs.
  std::string_view lastPathComponent() const;

  /// A file URL one component further down; other URLs are returned as they are.
  URL URLByAppendingPathComponent(std::string_view component, Kind kind = Kind::file) const;

  /// The URL's text, with its escapes.
  std::string absoluteString() const;

  /// What log lines print: the absolute string.
  std::string description() const { return absoluteString(); }

  friend bool operator==(const URL&, const URL&) = default;

 private:
  URL(std::string text, std::string path) : text_(std::move(text)), path_(std::move(path)) {}

  std::string text_;  // empty for a file URL that its path's text stands for
  std::string path_;  // the path, as bytes, of a file URL; else empty
};

}  // namespace foundation
