#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "foundation/NullableText.h"
#include "foundation/Value.h"

#undef major
#undef minor

/// A version of one to four numbers with dots between them: "2.1", "10.0.3.4711".
///
/// Versions are equal when their texts are: "1.0" and "1.0.0" differ. They have no order.
/// Immutable; any number of threads may use one at once.
class ZCLVersion : public foundation::Object {
 public:
  /// initFromString:
  ///
  /// Each piece counts by its leading digits (0 without any), a sign and white space before them
  /// allowed. Raises NSInvalidArgumentException ("versionString") for a null or empty text, for
  /// more than four pieces, and when the first number is 0.
  explicit ZCLVersion(foundation::NullableText versionString);

  /// The four numbers; one that the text does not tell is 0.
  std::int64_t major() const { return major_; }
  std::int64_t minor() const { return minor_; }
  std::int64_t build() const { return build_; }
  std::int64_t revision() const { return revision_; }

  /// The text that the version was made from.
  std::string description() const override { return versionString_; }

  bool isEqual(const foundation::Object& other) const override;
  std::size_t hash() const override;

 private:
  std::string versionString_;
  std::int64_t major_ = 0;
  std::int64_t minor_ = 0;
  std::int64_t build_ = 0;
  std::int64_t revision_ = 0;
};

template <>
struct std::hash<ZCLVersion> {
  std::size_t operator()(const ZCLVersion& version) const { return version.hash(); }
};
