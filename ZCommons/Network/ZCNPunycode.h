#pragma once

#include <string>
#include <string_view>

/// Punycode (RFC 3492) of one label, without a prefix, appended to a text.
///
/// The work grows with n log n for labels of any kind and length. Thread safety: any thread.
class ZCNPunycode {
 public:
  ZCNPunycode() = delete;

  /// Appends the Punycode form of a UTF-8 label; an ill-formed piece reads as U+FFFD.
  /// Returns false, with `output` as it was, on an overflow of 32 bits.
  static bool appendEncoded(std::string_view label, std::string& output);

  /// Appends the label that `text` is the Punycode form of.
  /// Returns false, with `output` as it was, for a character that has no place in that form, an
  /// integer that is cut off, an overflow of 32 bits, a surrogate or a value above U+10FFFF.
  static bool appendDecoded(std::string_view text, std::string& output);
};
