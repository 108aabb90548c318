#include "ZCommons/Files/ZCFFileReader.h"

#include <algorithm>
#include <utility>

using foundation::Result;
using platform::FileHandle;

namespace {

constexpr std::size_t bufferLength = 64 * 1024;

}  // namespace

ZCFFileReader::ZCFFileReader(FileHandle file) : file_(std::move(file)), buffer_(bufferLength) {}

Result<std::shared_ptr<ZCFFileReader>> ZCFFileReader::openForReading(std::string_view path) {
  Result<FileHandle> file = FileHandle::openForReading(path);
  if (!file) return file.error();
  return std::shared_ptr<ZCFFileReader>(new ZCFFileReader(*std::move(file)));
}

bool ZCFFileReader::fill() {
  const Result<std::size_t> count = file_.read(buffer_.data(), buffer_.size());
  if (!count) {
    error_ = count.error();
    return false;
  }
  unread_ = foundation::DataView(buffer_).first(*count);
  return true;
}

std::int64_t ZCFFileReader::read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) {
  if (unread_.empty() && !fill()) return ZCIO_ERROR;
  const std::size_t count = std::min(maxLength, unread_.size());
  std::copy_n(unread_.begin(), count, buffer);
  unread_ = unread_.subspan(count);
  return static_cast<std::int64_t>(count);
}
