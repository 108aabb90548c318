#include "ZCommons/Data/ZCDObject.h"

#include <typeinfo>

#include "foundation/ClassName.h"
#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"

using foundation::Value;

const ZCDClass& ZCDObject::zcdClass() {
  static const auto& description = *new ZCDClass(
      nullptr, []() -> std::shared_ptr<ZCDObject> { return std::make_shared<ZCDObject>(); }, {});
  return description;
}

std::vector<std::string> ZCDObject::propertyNames() const {
  std::vector<std::string> names;
  for (const ZCDClass* level = &dynamicClass(); level; level = level->superclass()) {
    for (const ZCDProperty* property : level->registeredProperties()) {
      names.push_back(property->name);
    }
  }
  return names;
}

bool ZCDObject::initWithCoder(foundation::ArchiveReader& coder) {
  for (const ZCDProperty* property : dynamicClass().persistentProperties()) {
    const std::optional<Value> value = coder.decodeObjectForKey(property->name);
    if (!value || !property->set) continue;
    try {
      setValueForKey(value, property->name);
    } catch (const foundation::NSInvalidArgumentException&) {
      // Another version of the class had another type.
    }
  }
  return true;
}

void ZCDObject::encodeWithCoder(foundation::ArchiveWriter& coder) const {
  for (const ZCDProperty* property : dynamicClass().persistentProperties()) {
    coder.encodeObject(valueForKey(property->name).value_or(Value()), property->name);
  }
}

std::shared_ptr<ZCDObject> ZCDObject::copyWithZone() const {
  std::shared_ptr<ZCDObject> copy = dynamicClass().make();
  const ZCDObject& made = *copy;
  if (typeid(made) != typeid(*this)) {
    foundation::raise<foundation::NSInternalInconsistencyException>(foundation::format(
        "class %@ does not declare its properties", foundation::className(typeid(*this))));
  }
  for (const ZCDProperty* property : dynamicClass().persistentProperties()) {
    if (property->set) copy->setValueForKey(valueForKey(property->name), property->name);
  }
  return copy;
}

std::optional<Value> ZCDObject::valueForKey(std::string_view key) const {
  const ZCDProperty* property = dynamicClass().propertyNamed(key);
  return property ? property->get(*this) : KeyValueCoding::valueForKey(key);
}

void ZCDObject::setValueForKey(const std::optional<Value>& value, std::string_view key) {
  const ZCDProperty* property = dynamicClass().propertyNamed(key);
  if (!property || !property->set) return KeyValueCoding::setValueForKey(value, key);
  if (property->set(*this, value)) return;
  const bool isNull = !value || value->isNull();
  foundation::raise<foundation::NSInvalidArgumentException>(foundation::format(
      isNull ? "[<%@ %p> setNilValueForKey]: could not set nil as the value for the key %@."
             : "[<%@ %p> setValue:forKey:]: the value does not fit the property for the key %@.",
      foundation::className(typeid(*this)), static_cast<const void*>(this), key));
}
