#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ZCommons/Data/ZCDProperty.h"

class ZCDObject;

/// What is known of a class of data objects: its properties, and which of them are persistent.
///
/// There is one for each class, made when the class is first used, and never destroyed. Immutable:
/// any thread, without a lock.
class ZCDClass {
 public:
  using Factory = std::shared_ptr<ZCDObject> (*)();

  /// `properties` are the class's own, in the order of their declaration. `superclass` is null for
  /// ZCDObject.
  ZCDClass(const ZCDClass* superclass, Factory factory, std::vector<ZCDProperty> properties);

  ZCDClass(const ZCDClass&) = delete;
  ZCDClass& operator=(const ZCDClass&) = delete;

  const ZCDClass* superclass() const { return superclass_; }

  /// A fresh object of the class, made by its plain constructor.
  std::shared_ptr<ZCDObject> make() const { return factory_(); }

  /// The property of that name, of this class or its nearest superclass that has one; else null.
  const ZCDProperty* propertyNamed(std::string_view name) const;

  /// The class's persistent properties, own and inherited, each name once. Empty when the class
  /// has none of its own, whatever it inherits.
  const std::vector<const ZCDProperty*>& registeredProperties() const { return registered_; }

  /// The persistent properties of the class and all its superclasses, each name once.
  const std::vector<const ZCDProperty*>& persistentProperties() const { return persistent_; }

 private:
  const ZCDClass* const superclass_;
  const Factory factory_;
  const std::vector<ZCDProperty> properties_;
  std::vector<const ZCDProperty*> registered_;
  std::vector<const ZCDProperty*> persistent_;
};
