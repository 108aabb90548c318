#include "ZCommons/IO/ZCIOGzipStream.h"

#include <algorithm>
#include <cstring>

#include <zlib.h>

using foundation::TimeInterval;

namespace {

constexpr std::size_t step = 16384;

constexpr int ended = Z_STREAM_END;
constexpr int damaged = -1;

[[noreturn]] void refuseWriting() {
  foundation::raise<ZCIOStreamErrorException>("Writing method is not implemented.");
}

bool isDamage(int result) {
  return result == Z_NEED_DICT || (result < Z_OK && result != Z_BUF_ERROR);
}

}  // namespace

std::int64_t ZCIOGzipStream::read(std::uint8_t* buffer, std::size_t maxLength) {
  if (maxLength == 0 || !buffer) return 0;
  std::size_t count = takeAvailable(buffer, maxLength);
  // Callers rely on the count leaving out what is left over behind the end.
  const bool isLeftOver = count < maxLength && hasEnded();
  if (isLeftOver) return static_cast<std::int64_t>(count);
  if (count < maxLength && zInputNeedInit_) beginInput();
  try {
    while (count < maxLength && zInputStatus_ != ended && readInput()) {
      count += takeAvailable(buffer + count, maxLength - count);
    }
  } catch (...) {
    decompressedData_.clear();
    foundation::append(decompressedData_, {buffer, count});
    decompressedStart_ = 0;
    throw;
  }
  bytesRead_ += count;
  return static_cast<std::int64_t>(count);
}

std::int64_t ZCIOGzipStream::write(const std::uint8_t*, std::size_t) { refuseWriting(); }

TimeInterval ZCIOGzipStream::writeTimeout() const { refuseWriting(); }

void ZCIOGzipStream::setWriteTimeout(TimeInterval) { refuseWriting(); }

std::uint64_t ZCIOGzipStream::bytesWritten() const { refuseWriting(); }

bool ZCIOGzipStream::hasEnded() const { return zInputStatus_ == ended || zInputStatus_ == damaged; }

void ZCIOGzipStream::beginInput() {
  readedData_.resize(step);
  zInputNeedInit_ = false;
  zInputStream_ = ZCIOInflateBegin();
  if (!zInputStream_) zInputStatus_ = ended;
}

// A damaged body is read on, to leave the inner stream at its end, and thrown away.
bool ZCIOGzipStream::readInput() {
  const std::int64_t count = inner().read(readedData_.data(), step);
  if (count < 1) {
    endInput(ended);
    return false;
  }
  if (zInputStatus_ == damaged) return true;
  zInputStream_->next_in = readedData_.data();
  zInputStream_->avail_in = static_cast<uInt>(std::min(step, static_cast<std::size_t>(count)));
  zInputPending_ = true;
  return true;
}

void ZCIOGzipStream::endInput(int status) {
  zInputStatus_ = status;
  zInputStream_.reset();
}

// Gives what the input read so far yields, and decompresses no more of it than is asked for, so
// that a step of input that holds megabytes does not take megabytes.
std::size_t ZCIOGzipStream::takeAvailable(std::uint8_t* buffer, std::size_t maxLength) {
  std::size_t count = takeDecompressed(buffer, maxLength);
  while (count < maxLength && zInputPending_) {
    if (maxLength - count >= step) {
      count += inflateStep(buffer + count);
      continue;
    }
    decompressedData_.resize(step);
    decompressedData_.resize(inflateStep(decompressedData_.data()));
    decompressedStart_ = 0;
    count += takeDecompressed(buffer + count, maxLength - count);
  }
  return count;
}

std::size_t ZCIOGzipStream::takeDecompressed(std::uint8_t* buffer, std::size_t maxLength) {
  const std::size_t count = std::min(maxLength, decompressedData_.size() - decompressedStart_);
  if (count > 0) std::memcpy(buffer, decompressedData_.data() + decompressedStart_, count);
  decompressedStart_ += count;
  return count;
}

// A step that ends in damage gives nothing. One that is not full has used up the input.
std::size_t ZCIOGzipStream::inflateStep(std::uint8_t* area) {
  zInputStream_->next_out = area;
  zInputStream_->avail_out = step;
  zInputStatus_ = inflate(zInputStream_.get(), Z_SYNC_FLUSH);
  zInputPending_ = zInputStream_->avail_out == 0;
  const std::size_t count = step - zInputStream_->avail_out;
  if (isDamage(zInputStatus_)) {
    zInputPending_ = false;
    endInput(damaged);
    return 0;
  }
  if (zInputStatus_ == ended && !zInputPending_) endInput(ended);
  return count;
}
