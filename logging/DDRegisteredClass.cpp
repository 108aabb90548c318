#include "logging/DDRegisteredClass.h"

DDRegisteredClass::DDRegisteredClass(const std::type_info& type, std::uint32_t (*getter)(),
                                     void (*setter)(std::uint32_t))
    : type_(type), getter_(getter), setter_(setter) {
  registerInstance();
}
