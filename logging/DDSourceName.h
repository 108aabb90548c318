#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "foundation/NullableText.h"

/// The short name of a source file: its path without folders and extension, which log lines open
/// with.
///
/// The name starts after the last "/" and ends at the last "." of the whole path, each when there
/// is one; "logging/DDLog.cpp" gives "DDLog". Points into `path`. Nothing for a null path, and when
/// the last "." stands before the last "/".
constexpr std::optional<std::string_view> DDSourceName(foundation::NullableText path) {
  if (path.isNull()) return std::nullopt;
  const std::string_view text = path.view();
  const std::size_t slash = text.rfind('/');
  const std::size_t start = slash == std::string_view::npos ? 0 : slash + 1;
  const std::size_t dot = text.rfind('.');
  const std::size_t end = dot == std::string_view::npos ? text.size() : dot;
  if (end < start) return std::nullopt;
  return text.substr(start, end - start);
}

/// As `DDSourceName`, worked out by the compiler.
consteval std::optional<std::string_view> DDStaticSourceName(const char* path) {
  return DDSourceName(path);
}
