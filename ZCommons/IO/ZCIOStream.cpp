#include "ZCommons/IO/ZCIOStream.h"

#include <utility>

using foundation::TimeInterval;

ZCIOStreamErrorException::ZCIOStreamErrorException(const std::string& reason)
    : NSException("ZCIOStreamErrorException", reason) {}

std::int64_t ZCIOStreamDelegate::read(std::uint8_t*, std::size_t, ZCIOStream&) {
  return ZCIO_ERROR;
}

std::int64_t ZCIOStreamDelegate::write(const std::uint8_t*, std::size_t, ZCIOStream&) {
  return ZCIO_ERROR;
}

ZCIOStream::ZCIOStream(std::weak_ptr<ZCIOStreamDelegate> delegate)
    : delegate_(std::move(delegate)) {}

TimeInterval ZCIOStream::readTimeout() const {
  const auto target = delegate();
  return target ? target->readTimeout() : ZCIO_NO_TIMEOUT;
}

void ZCIOStream::setReadTimeout(TimeInterval timeout) {
  if (const auto target = delegate()) target->setReadTimeout(timeout);
}

TimeInterval ZCIOStream::writeTimeout() const {
  const auto target = delegate();
  return target ? target->writeTimeout() : ZCIO_NO_TIMEOUT;
}

void ZCIOStream::setWriteTimeout(TimeInterval timeout) {
  if (const auto target = delegate()) target->setWriteTimeout(timeout);
}

std::int64_t ZCIOStream::read(std::uint8_t* buffer, std::size_t maxLength) {
  if (maxLength == 0) return 0;
  if (!buffer) return ZCIO_ERROR;
  const auto delegate = delegate_.lock();
  if (!delegate) return ZCIO_ERROR;
  const std::int64_t count = delegate->read(buffer, maxLength, *this);
  if (count >= 1) bytesRead_ += static_cast<std::uint64_t>(count);
  return count;
}

std::int64_t ZCIOStream::write(const std::uint8_t* buffer, std::size_t maxLength) {
  if (maxLength == 0) return 0;
  if (!buffer) return ZCIO_ERROR;
  const auto delegate = delegate_.lock();
  if (!delegate) return ZCIO_ERROR;
  const std::int64_t count = delegate->write(buffer, maxLength, *this);
  if (count >= 1) {
    bytesWritten_ += static_cast<std::uint64_t>(count);
    counterWrittenBytes_.fetch_add(static_cast<std::uint64_t>(count), std::memory_order_relaxed);
  }
  return count;
}

void ZCIOStream::clearCounterWrittenBytes() {
  counterWrittenBytes_.store(0, std::memory_order_relaxed);
}

std::shared_ptr<ZCIOStreamDelegate> ZCIOStream::delegate() const { return delegate_.lock(); }

void ZCIOStream::setDelegate(std::weak_ptr<ZCIOStreamDelegate> delegate) {
  delegate_ = std::move(delegate);
}

std::uint64_t ZCIOStream::bytesWritten() const { return bytesWritten_; }

std::uint64_t ZCIOStream::counterWrittenBytes() const {
  return counterWrittenBytes_.load(std::memory_order_relaxed);
}

std::uint64_t ZCIOStream::bytesRead() const { return bytesRead_; }
