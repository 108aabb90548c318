#pragma once

#include <string_view>

#include "foundation/StringEncoding.h"

/// What texts of HTTP (RFC 9112) are made of. Thread safety: any thread.
class ZCNHttpUtils {
 public:
  ZCNHttpUtils() = delete;

  /// The encoding of a text that names none: ISO Latin-1.
  static constexpr foundation::StringEncoding defaultHttpEncoding() {
    return foundation::StringEncoding::ISOLatin1;
  }

  /// The end of a line: carriage return and line feed.
  static constexpr std::string_view CRLFData() { return "\r\n"; }
};
