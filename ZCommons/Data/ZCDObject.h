#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ZCommons/Data/ZCDClass.h"
#include "ZCommons/Data/ZCDProperty.h"
#include "foundation/KeyValueCoding.h"
#include "foundation/Value.h"
#include "foundation/archive/Archivable.h"

/// Base of plain data records, which archive, unarchive and copy themselves by their properties.
///
/// A subclass lists its members once, with itself and its superclass in front, and writes no code
/// of its own. It has a plain constructor.
///
///     class Bookmark : public ZCDObject {
///      public:
///       std::string title;
///       std::int32_t visits = 0;
///       std::optional<foundation::Date> lastVisit;
///       std::shared_ptr<Folder> folder;      // shared with the copy
///       ZCDCopied<Tags> tags;                // copied when it is set
///       std::weak_ptr<Bookmark> parent;      // weak: not persistent
///       const bool isSecure = false;         // read-only: not persistent
///       ZCD_PROPERTIES(Bookmark, ZCDObject, title, visits, lastVisit, folder, tags, parent,
///                      isSecure);
///     };
///
///     auto data = foundation::ArchiveWriter::archivedData(bookmark);
///     auto again = foundation::ArchiveReader::unarchivedObjectOfClass<Bookmark>(*data);
///     std::shared_ptr<Bookmark> copy = bookmark->copy();
///
/// Persistent are signed and unsigned integers of 8, 16 and 32 bits, signed ones of 64 bits, float,
/// double, and objects: texts, data, dates, numbers, arrays, dictionaries, values, optionals, and
/// shared pointers to classes derived from foundation::Object. Read-only (const members and const
/// member functions) and weak properties are not; neither are bool, unsigned integers of 64 bits,
/// structures and pointers. All of them can be read by `valueForKey`.
///
/// A private field may end with an underscore, which its property's name does not have. A subclass
/// without properties has the line as well. A file that another version of the class wrote is read:
/// properties it lacks keep their initial values, keys that the class lacks are skipped.
///
/// Thread safety: none for a record; the classes can be used from any thread.
class ZCDObject : public foundation::Archivable, public foundation::KeyValueCoding {
 public:
  /// The persistent properties of the object's class and all its superclasses. A name that is
  /// inherited across several levels can occur more than once; the order is not defined.
  std::vector<std::string> propertyNames() const;

  /// What `propertyNames` of a fresh object of the class gives: `Bookmark::propertyNamesArray()`.
  static std::vector<std::string> propertyNamesArray() { return {}; }

  /// initWithCoder:
  ///
  /// Sets the properties that the archive holds, by `setValueForKey`. A property for which that
  /// raises NSInvalidArgumentException keeps its initial value. Always true.
  bool initWithCoder(foundation::ArchiveReader& coder) override;

  /// encodeWithCoder:
  ///
  /// Writes what `valueForKey` gives for each persistent property under its name, a null one as the
  /// null object.
  void encodeWithCoder(foundation::ArchiveWriter& coder) const override;

  /// copyWithZone:
  ///
  /// A new object of the same class, made by its plain constructor, with the same values in its
  /// persistent properties. Objects are shared with the original, except where the property copies.
  /// Raises NSInternalInconsistencyException for a class without its ZCD_PROPERTIES.
  std::shared_ptr<ZCDObject> copyWithZone() const;

  std::optional<foundation::Value> valueForKey(std::string_view key) const override;
  void setValueForKey(const std::optional<foundation::Value>& value, std::string_view key) override;

  static const ZCDClass& zcdClass();
  virtual const ZCDClass& dynamicClass() const { return zcdClass(); }

  ARCHIVABLE_CLASS(ZCDObject, foundation::Archivable);
};

/// Declares the properties of a data object; stands in the public part of its body, behind its
/// members.
#define ZCD_PROPERTIES(Class, Superclass, ...)                                                    \
  static const ZCDClass& zcdClass() {                                                             \
    using ZCDSelf = Class;                                                                        \
    static const auto& description =                                                              \
        *new ZCDClass(&Superclass::zcdClass(),                                                    \
                      []() -> std::shared_ptr<ZCDObject> { return std::make_shared<ZCDSelf>(); }, \
                      {__VA_OPT__(ZCD_EXPAND(ZCD_EACH(__VA_ARGS__)))});                           \
    return description;                                                                           \
  }                                                                                               \
  const ZCDClass& dynamicClass() const override { return zcdClass(); }                            \
  static std::vector<std::string> propertyNamesArray() { return Class().propertyNames(); }        \
  std::shared_ptr<Class> copy() const { return std::static_pointer_cast<Class>(copyWithZone()); } \
  ARCHIVABLE_CLASS(Class, Superclass)

// One ZCDProperty for each name: the expansion scans itself again until none is left.
#define ZCD_EACH(name, ...) \
  ZCDProperty::of<&ZCDSelf::name>(#name), __VA_OPT__(ZCD_AGAIN ZCD_PARENTHESES(__VA_ARGS__))
#define ZCD_AGAIN() ZCD_EACH
#define ZCD_PARENTHESES ()
#define ZCD_EXPAND(...) ZCD_EXPAND3(ZCD_EXPAND3(ZCD_EXPAND3(ZCD_EXPAND3(__VA_ARGS__))))
#define ZCD_EXPAND3(...) ZCD_EXPAND2(ZCD_EXPAND2(ZCD_EXPAND2(ZCD_EXPAND2(__VA_ARGS__))))
#define ZCD_EXPAND2(...) ZCD_EXPAND1(ZCD_EXPAND1(ZCD_EXPAND1(ZCD_EXPAND1(__VA_ARGS__))))
#define ZCD_EXPAND1(...) __VA_ARGS__
