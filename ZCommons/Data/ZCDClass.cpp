#include "ZCommons/Data/ZCDClass.h"

#include <algorithm>
#include <utility>

ZCDClass::ZCDClass(const ZCDClass* superclass, Factory factory, std::vector<ZCDProperty> properties)
    : superclass_(superclass), factory_(factory), properties_(std::move(properties)) {
  const auto add = [this](const std::string& name) {
    const ZCDProperty* property = propertyNamed(name);
    if (std::ranges::find(persistent_, property) == persistent_.end()) {
      persistent_.push_back(property);
    }
  };
  for (const ZCDProperty& property : properties_) {
    if (ZCDProperty::isPersistent(property.attributes)) add(property.name);
  }
  const bool hasOwn = !persistent_.empty();
  if (superclass) {
    for (const ZCDProperty* inherited : superclass->persistent_) add(inherited->name);
  }
  if (hasOwn) registered_ = persistent_;
}

const ZCDProperty* ZCDClass::propertyNamed(std::string_view name) const {
  for (const ZCDClass* declaring = this; declaring; declaring = declaring->superclass_) {
    const auto found = std::ranges::find(declaring->properties_, name, &ZCDProperty::name);
    if (found != declaring->properties_.end()) return &*found;
  }
  return nullptr;
}
