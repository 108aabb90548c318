#include <cstdint>
#include <cstdlib>

#include "ZCommons/IO/ZCIOUtils.h"

namespace {

struct InputDelegate : ZCIOStreamDelegate {
  explicit InputDelegate(foundation::DataView bytes) : input(bytes) {}
  std::int64_t read(std::uint8_t* buffer, std::size_t, ZCIOStream&) override {
    if (input.empty()) return 0;
    *buffer = input.front();
    input = input.subspan(1);
    return 1;
  }
  foundation::DataView input;
};

}  // namespace

// Every line is text of its encoding, and all bytes are taken.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const auto delegate = std::make_shared<InputDelegate>(foundation::DataView(bytes, length));
  ZCIOStream stream(delegate);
  while (const auto line = ZCIOUtils::readLine(stream, foundation::StringEncoding::UTF8)) {
    if (!foundation::isValidUTF8(*line) || line->find('\n') != std::string::npos) std::abort();
  }
  if (stream.bytesRead() != length) std::abort();
  return 0;
}
