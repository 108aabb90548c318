#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Error.h"
#include "foundation/NullableText.h"
#include "foundation/RegularExpression.h"

/// A shell-style wildcard, compiled into a regular expression that it itself is.
///
/// "*" stands for any run of characters, "?" for exactly one, neither for a line end; everything
/// else stands for itself. A match is one of the whole string. Case counts unless an option says
/// otherwise. Immutable; any number of threads may match at once.
///
///     const auto logs = ZCLWildcard::wildcard("*.log");
///     logs->matchWildcard("a.log");   // true
class ZCLWildcard : public foundation::RegularExpression {
 public:
  /// wildcard:
  ///
  /// As `wildcard(wildcard, none)`.
  static std::optional<ZCLWildcard> wildcard(std::string_view wildcard);

  /// wildcard:options:
  ///
  /// A wildcard with `options` of the expression; nothing, and two warnings in the log, when the
  /// engine does not take it.
  static std::optional<ZCLWildcard> wildcard(std::string_view wildcard, unsigned options);

  /// initWithWildcard:options:error:
  ///
  /// As `wildcard(wildcard, options)`, with the engine's error and without a log line.
  static foundation::Result<ZCLWildcard> initWithWildcard(std::string_view wildcard,
                                                          unsigned options);

  /// The pattern of the expression for `wildcard`, anchored at both ends.
  static std::string regexFromWildcard(std::string_view wildcard);

  /// The longest piece of `wildcard` without "*" and "?", the first of several; it may be empty.
  static std::string extractShortcut(std::string_view wildcard);

  /// Whether the whole of `string` matches; false for a null or empty one. The longest literal
  /// piece has to be in it as it stands, also when the expression ignores case.
  bool matchWildcard(foundation::NullableText string) const;

  /// "ZCLWildcard": the class's name, not the wildcard.
  std::string stringValue() const { return "ZCLWildcard"; }

  /// The wildcard's text.
  const std::string& patternString() const { return patternString_; }

  /// The longest literal piece of the wildcard.
  const std::string& shortcut() const { return shortcut_; }

 private:
  ZCLWildcard(foundation::RegularExpression expression, std::string_view wildcard);

  bool matchesPlain(std::string_view text) const;
  bool matchesExpression(std::string_view text) const;

  std::string patternString_;
  std::string shortcut_;
  bool needsEngine_;
  std::size_t headLength_;  // of the piece before the first star
  std::size_t tailLength_;  // of the piece behind the last star; 0 without a star
};
