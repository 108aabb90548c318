#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "foundation/Data.h"

/// The domains under which the public registers its own: public suffixes of two labels ("co.uk")
/// and of three ("k12.ca.us").
///
/// They come from the resource "reservedDomains.plist": an XML property list, a dictionary whose
/// keys "TWO_LEVEL" and "THREE_LEVEL" each hold an array of texts; a key that is absent leaves its
/// set empty. Immutable. Thread safety: any thread.
class ZCNReservedDomains {
 public:
  /// The lists of this process, read at first use from the place that `setLocation` was given, else
  /// from the file beside the library (or the program that it is linked into), from "share/zarvo"
  /// in its folder or one of the three above, or from that of the installation: the first one
  /// found.
  ///
  /// Raises NSInternalInconsistencyException ("Application resource available error. Attempt load
  /// resource with name: reservedDomains.plist.") when there is no such file or it is damaged; the
  /// next call tries again.
  static const ZCNReservedDomains& singleton();

  /// The path of the file to read, for a program that keeps it in a place of its own. Has no
  /// effect any more once the lists are read.
  static void setLocation(std::string_view path);

  /// The lists in the bytes of a resource file; nothing when they are damaged.
  static std::optional<ZCNReservedDomains> listsFromData(foundation::DataView data);

  /// Whether `domain`, compared byte by byte, is in the list.
  bool isTwoLevel(std::string_view domain) const { return twoLevel_.contains(domain); }
  bool isThreeLevel(std::string_view domain) const { return threeLevel_.contains(domain); }

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  using Domains = std::unordered_set<std::string, Hash, std::equal_to<>>;

  static std::optional<Domains> domains(void* dictionary, const char* key);

  Domains twoLevel_;
  Domains threeLevel_;
};
