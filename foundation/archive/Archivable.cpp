#include "foundation/archive/Archivable.h"

#include "foundation/ClassName.h"

namespace foundation {

ArchivableClass::ArchivableClass(const std::type_info& type, const std::type_info& superclass,
                                 Factory factory)
    : type_(type), superclass_(superclass), name_(className(type)), make_(factory) {
  registerInstance();
}

const ArchivableClass* ArchivableClass::named(std::string_view name) {
  for (const ArchivableClass* known = last(); known; known = known->previous()) {
    if (known->name_ == name) return known;
  }
  return nullptr;
}

const ArchivableClass* ArchivableClass::ofType(const std::type_info& type) {
  for (const ArchivableClass* known = last(); known; known = known->previous()) {
    if (known->type_ == type) return known;
  }
  return nullptr;
}

}  // namespace foundation
