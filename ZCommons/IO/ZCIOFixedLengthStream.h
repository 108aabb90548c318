#pragma once

#include "ZCommons/IO/ZCIODecoratingStream.h"

/// A stream whose reading ends after a number of bytes, such as an HTTP body with a content length.
///
/// Writing is not limited. An inner stream that ends early is no error.
///
///     ZCIOFixedLengthStream body(connection, 5);
///     body.read(buffer, 8);   // 5 at most
class ZCIOFixedLengthStream : public ZCIODecoratingStream {
 public:
  /// Without a content length, reading is not limited.
  using ZCIODecoratingStream::ZCIODecoratingStream;

  /// initWithStream:contentLength:
  ///
  /// Lets `contentLength` bytes of `stream` be read; ZCIO_UNLIMITED sets no limit.
  /// Raises NSInvalidArgumentException ("stream") when `stream` is null.
  ZCIOFixedLengthStream(std::shared_ptr<ZCIOStream> stream, std::int64_t contentLength);

  /// read:maxLength:
  ///
  /// One read of the inner stream, of `maxLength` bytes or those that are left, and its result;
  /// 0 without a read once none is left.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override;

  /// write:maxLength:
  ///
  /// Writes to the inner stream; its result.
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override;

  /// Bytes read and written through this stream.
  std::uint64_t bytesRead() const override { return bytesRead_; }
  std::uint64_t bytesWritten() const override { return bytesWritten_; }

 private:
  const std::uint64_t contentLength_ = static_cast<std::uint64_t>(ZCIO_UNLIMITED);
  std::uint64_t bytesWritten_ = 0;
  std::uint64_t bytesRead_ = 0;
};
