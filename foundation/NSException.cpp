#include "foundation/NSException.h"

#include <utility>

namespace foundation {

NSException::NSException(std::string name, const std::string& reason)
    : std::runtime_error(reason), name_(std::move(name)) {}

NSGenericException::NSGenericException(const std::string& reason)
    : NSException("NSGenericException", reason) {}

NSInvalidArgumentException::NSInvalidArgumentException(const std::string& reason)
    : NSException("NSInvalidArgumentException", reason) {}

NSRangeException::NSRangeException(const std::string& reason)
    : NSException("NSRangeException", reason) {}

NSMallocException::NSMallocException(const std::string& reason)
    : NSException("NSMallocException", reason) {}

NSInternalInconsistencyException::NSInternalInconsistencyException(const std::string& reason)
    : NSException("NSInternalInconsistencyException", reason) {}

void raiseArgumentException(NullableText argumentName) {
  const std::string name = argumentName.isNull() ? "(NONE)" : argumentName.string();
  raise<NSInvalidArgumentException>("Method argument error: " + name);
}

void raiseMallocException(NullableText purpose) {
  raise<NSMallocException>("Memory allocation error. Attempt allocate memory for (" +
                           purpose.string() + ").");
}

}  // namespace foundation
