#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace foundation {

/// The parts of a URI reference (RFC 3986, section 4.1): a URI, or a relative reference without a
/// scheme. Views into the text that was parsed; escapes and spelling stay as they are there.
struct URIReference {
  std::optional<std::string_view> scheme;
  std::optional<std::string_view> authority;
  std::string_view path;
  std::optional<std::string_view> query;
  std::optional<std::string_view> fragment;

  /// The parts of `text`; nothing when it does not follow the grammar (a character that has to be
  /// escaped, a malformed escape, a port with other than digits, a malformed address in brackets).
  /// The empty text is a reference without parts.
  static std::optional<URIReference> parse(std::string_view text);

  /// The host as it stands in the authority, brackets included; nothing without an authority.
  std::optional<std::string_view> host() const;

  /// The port; nothing when there is none, or one above 65535.
  std::optional<std::uint16_t> port() const;

  /// The text of this reference with "." and ".." removed from its path (section 5.2.4). Unlike
  /// there, a path that begins without a slash keeps the ".." that lead out of it, and what is left
  /// never begins to read as another part.
  std::string withoutDotSegments() const;

  /// The text of this reference as seen from `base` (section 5.2.2, strict), dot segments removed.
  /// A base without a scheme gives a relative reference.
  std::string resolvedAgainst(const URIReference& base) const;
};

}  // namespace foundation
