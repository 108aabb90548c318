#include "foundation/ClassName.h"

#include <stdlib.h>

#include <memory>

#include <cxxabi.h>

namespace foundation {

std::string className(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &free);
  return status == 0 ? name.get() : type.name();
}

}  // namespace foundation
