#include "ZCommons/IO/ZCIODescriptorDelegate.h"

#include <utility>

namespace {

std::int64_t countOf(const foundation::Result<std::size_t>& result,
                     std::optional<foundation::Error>& error) {
  if (result) return static_cast<std::int64_t>(*result);
  error = result.error();
  return ZCIO_ERROR;
}

}  // namespace

ZCIODescriptorDelegate::ZCIODescriptorDelegate(platform::FileHandle handle)
    : channel_(std::move(handle)) {}

std::int64_t ZCIODescriptorDelegate::read(std::uint8_t* buffer, std::size_t maxLength,
                                          ZCIOStream&) {
  return countOf(channel_.read(buffer, maxLength, readTimeout_), readError_);
}

std::int64_t ZCIODescriptorDelegate::write(const std::uint8_t* buffer, std::size_t maxLength,
                                           ZCIOStream&) {
  return countOf(channel_.write({buffer, maxLength}, writeTimeout_), writeError_);
}
