#pragma once

#include "foundation/Data.h"
#include "foundation/Error.h"
#include "foundation/Value.h"

namespace foundation {

/// The two forms of property list data.
enum class PropertyListFormat {
  XML,     ///< a text for people and other tools
  Binary,  ///< small and quick to read
};

/// Property lists: values as files that other programs read and write.
///
/// Texts, numbers, data, dates, arrays and dictionaries are written in the formats' own terms.
/// Numbers come back equal; a bool (a number of type code c that is 0 or 1) stays one, any other
/// number comes back with type code q, Q (above the largest signed one) or d. What the format
/// cannot hold stands in the list as a dictionary of "$type" and "$value":
///
/// | "$type"      | stands for                                              | "$value"            |
/// |--------------|---------------------------------------------------------|---------------------|
/// | "null"       | the null object                                         | none                |
/// | "date"       | a date the format would round, or of a year outside     | text: microseconds  |
/// |              | 1000 to 9999 (XML only)                                 | since 1970          |
/// | "text"       | a text with a zero byte, ill-formed UTF-8, or (XML      | data: its bytes     |
/// |              | only) another control character that XML forbids        |                     |
/// | "dictionary" | a dictionary with such a key, or with the key "$type"   | array: key, value,  |
/// |              |                                                         | key, value …        |
///
/// A dictionary that only resembles these is an ordinary one. Reading follows a list no deeper than
/// 512 containers, and refuses data that would grow beyond 256 MiB and 64 times its own size by
/// naming the same parts over and over.
///
///     auto data = PropertyList::dataWithPropertyList(settings, PropertyListFormat::XML);
///     auto value = PropertyList::propertyListWithData(*data);
///
/// Errors have the domain "NSCocoaErrorDomain". Any thread.
class PropertyList {
 public:
  PropertyList() = delete;

  /// dataWithPropertyList:format:
  ///
  /// `value` as property list data. Error 3852 when it holds a shared object, is nested too deeply
  /// to be read again, or is too large for the format (1 GiB).
  static Result<Data> dataWithPropertyList(const Value& value, PropertyListFormat format);

  /// propertyListWithData:
  ///
  /// The value in `data`, whose format is found out. A UID, which only keyed archives hold, is a
  /// dictionary of "CF$UID" and the number. Error 3840 when the data is no property list, or goes
  /// beyond the limits above.
  static Result<Value> propertyListWithData(DataView data);
};

}  // namespace foundation
