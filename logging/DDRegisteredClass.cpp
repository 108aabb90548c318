#include "logging/DDRegisteredClass.h"

#include <atomic>

namespace {

// Constant-initialised: classes register themselves before other statics of this source exist.
constinit std::atomic<const DDRegisteredClass*> lastRegistered{nullptr};

}  // namespace

DDRegisteredClass::DDRegisteredClass(const std::type_info& type, std::uint32_t (*getter)(),
                                     void (*setter)(std::uint32_t))
    : type_(type), getter_(getter), setter_(setter), previous_(lastRegistered) {
  while (!lastRegistered.compare_exchange_weak(previous_, this)) {
  }
}

const DDRegisteredClass* DDRegisteredClass::last() { return lastRegistered; }
