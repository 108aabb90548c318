#include <cstddef>
#include <cstdint>

#include "foundation/Data.h"
#include "platform/linux/ControlGroup.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/ProcFileSystem.h"

// Everything that is read of other people's programs to find the running applications.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = foundation::textOf({data, size});
  platform::DesktopEntry::parse(text, platform::desktopEntryLocaleKeys(text.substr(0, 16)));
  platform::applicationScopes(text);
  platform::ProcFileSystem::parseStatus(text);
  return 0;
}
