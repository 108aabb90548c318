#pragma once

#include <string>
#include <typeinfo>

namespace foundation {

/// The name of a class as the source writes it, with its namespaces: `className(typeid(*object))`.
std::string className(const std::type_info& type);

}  // namespace foundation
