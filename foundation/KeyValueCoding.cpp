#include "foundation/KeyValueCoding.h"

#include <typeinfo>

#include "foundation/ClassName.h"
#include "foundation/Format.h"

namespace foundation {
namespace {

[[noreturn]] void raiseUndefinedKey(const KeyValueCoding& object, std::string_view method,
                                    std::string_view key) {
  raise<NSUndefinedKeyException>(
      format("[<%@ %p> %@]: this class is not key value coding-compliant for the key %@.",
             className(typeid(object)), static_cast<const void*>(&object), method, key));
}

}  // namespace

NSUndefinedKeyException::NSUndefinedKeyException(const std::string& reason)
    : NSException("NSUndefinedKeyException", reason) {}

std::optional<Value> KeyValueCoding::valueForKey(std::string_view key) const {
  raiseUndefinedKey(*this, "valueForUndefinedKey:", key);
}

void KeyValueCoding::setValueForKey(const std::optional<Value>&, std::string_view key) {
  raiseUndefinedKey(*this, "setValue:forUndefinedKey:", key);
}

}  // namespace foundation
