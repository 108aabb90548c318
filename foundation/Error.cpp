#include "foundation/Error.h"

#include <system_error>

namespace foundation {

Error::Error(std::string domain, long code, std::string localizedDescription)
    : domain_(std::move(domain)),
      code_(code),
      localizedDescription_(std::move(localizedDescription)) {}

Error Error::posix(int code, std::string operation) {
  operation += ": ";
  operation += std::generic_category().message(code);
  return Error("NSPOSIXErrorDomain", code, std::move(operation));
}

}  // namespace foundation
