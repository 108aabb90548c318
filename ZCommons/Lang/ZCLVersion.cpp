#include "ZCommons/Lang/ZCLVersion.h"

#include <algorithm>
#include <string_view>

#include "foundation/NSException.h"
#include "foundation/Number.h"

namespace {

constexpr const char* argumentName = "versionString";

}  // namespace

ZCLVersion::ZCLVersion(foundation::NullableText versionString)
    : versionString_(versionString.view()) {
  if (versionString.isNullOrEmpty()) foundation::raiseArgumentException(argumentName);
  std::int64_t* const numbers[] = {&major_, &minor_, &build_, &revision_};
  const std::string_view text = versionString_;
  std::size_t start = 0;
  for (std::int64_t* const number : numbers) {
    const std::size_t end = std::min(text.find('.', start), text.size());
    *number = foundation::integerValue(text.substr(start, end - start));
    start = end + 1;
    if (start > text.size()) break;
  }
  if (start <= text.size() || major_ == 0) foundation::raiseArgumentException(argumentName);
}

bool ZCLVersion::isEqual(const foundation::Object& other) const {
  const auto* const version = dynamic_cast<const ZCLVersion*>(&other);
  return version && version->versionString_ == versionString_;
}

std::size_t ZCLVersion::hash() const { return std::hash<std::string>()(versionString_); }
