#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "ZCommons/IO/ZCIOChunkedStream.h"
#include "ZCommons/IO/ZCIOUtils.h"
#include "logging/DDLog.h"

namespace {

struct InputDelegate : ZCIOStreamDelegate {
  InputDelegate(foundation::DataView bytes, std::size_t cut) : input(bytes), most(cut) {}
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) override {
    const std::size_t count = std::min({maxLength, most, input.size()});
    std::memcpy(buffer, input.data(), count);
    input = input.subspan(count);
    return static_cast<std::int64_t>(count);
  }
  foundation::DataView input;
  const std::size_t most;
};

foundation::Data bodyOf(foundation::DataView bytes, std::size_t cut) {
  const auto delegate = std::make_shared<InputDelegate>(bytes, cut);
  ZCIOChunkedStream stream(delegate);
  foundation::Data body = ZCIOUtils::readToEnd(stream).value();
  if (body.size() + delegate->input.size() > bytes.size()) std::abort();
  return body;
}

}  // namespace

// The body does not depend on how the inner stream cuts its reads.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  if (length == 0) return 0;
  DDLog::setGlobalLogLevel(DDLogLevel::info);
  const foundation::DataView input(bytes + 1, length - 1);
  if (bodyOf(input, bytes[0] % 16 + 1u) != bodyOf(input, SIZE_MAX)) std::abort();
  return 0;
}
