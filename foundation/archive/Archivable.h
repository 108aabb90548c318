#pragma once

#include <concepts>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>

#include "foundation/Registered.h"
#include "foundation/Value.h"

namespace foundation {

class ArchiveReader;
class ArchiveWriter;

/// Base of the classes whose objects can be archived: written into a keyed archive and made again
/// from one.
///
/// A class says how, and announces itself in its body with its superclass. It has a plain
/// constructor, which makes the object that is then filled from the archive.
///
///     class Person : public foundation::Archivable {
///      public:
///       bool initWithCoder(foundation::ArchiveReader& coder) override;
///       void encodeWithCoder(foundation::ArchiveWriter& coder) const override;
///       ARCHIVABLE_CLASS(Person, foundation::Archivable);
///     };
///
///     void Person::encodeWithCoder(ArchiveWriter& coder) const {
///       coder.encodeObject(name_, "name");
///       coder.encodeInteger(age_, "age");
///     }
class Archivable : public Object {
 public:
  /// initWithCoder:
  ///
  /// Fills a fresh object from an archive. False when the archive does not hold what the class
  /// needs; the whole archive is then refused. May raise what the reader raises.
  virtual bool initWithCoder(ArchiveReader& coder) = 0;

  /// encodeWithCoder:
  ///
  /// Writes what `initWithCoder` reads.
  virtual void encodeWithCoder(ArchiveWriter& coder) const = 0;
};

/// A class that archives know by its name.
///
/// Every source that includes the header of an archivable class carries its registration, so it
/// happens wherever the class is used, also when the class comes from a static library whose other
/// object files are dropped. Lives until the process ends. Any thread.
class ArchivableClass : public Registered<ArchivableClass> {
 public:
  template <class T, class Superclass>
  static ArchivableClass registration() {
    static_assert(std::derived_from<T, Archivable>, "archivable classes derive from Archivable");
    static_assert(std::derived_from<T, Superclass>, "the second class is a base of the first");
    static_assert(std::default_initializable<T>, "an archivable class has a plain constructor");
    return ArchivableClass(typeid(T), typeid(Superclass),
                           []() -> std::shared_ptr<Archivable> { return std::make_shared<T>(); });
  }

  /// The class of that name (with its namespaces), or of that type; null when none is registered.
  static const ArchivableClass* named(std::string_view name);
  static const ArchivableClass* ofType(const std::type_info& type);

  const std::string& name() const { return name_; }

  /// The registered superclass, or null when there is none.
  const ArchivableClass* superclass() const { return ofType(superclass_); }

  /// A fresh object of the class, made by its plain constructor.
  std::shared_ptr<Archivable> make() const { return make_(); }

 private:
  using Factory = std::shared_ptr<Archivable> (*)();

  ArchivableClass(const std::type_info& type, const std::type_info& superclass, Factory factory);

  const std::type_info& type_;
  const std::type_info& superclass_;
  const std::string name_;
  const Factory make_;
};

/// Registers a class for archives; stands in the public part of its body.
#define ARCHIVABLE_CLASS(Class, Superclass)                           \
  inline static const ::foundation::ArchivableClass archivableClass = \
      ::foundation::ArchivableClass::registration<Class, Superclass>()

}  // namespace foundation
