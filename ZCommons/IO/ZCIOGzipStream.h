#pragma once

#include "ZCommons/IO/ZCIODecoratingStream.h"
#include "ZCommons/IO/ZCIOInflate.h"
#include "foundation/Data.h"

/// A read-only stream that decompresses what another stream holds: gzip (RFC 1952) or zlib
/// (RFC 1950), told apart by the header, as in an HTTP body coded with gzip or deflate.
///
/// A damaged body is no error. It ends like a whole one, behind the last step of 16 KiB that was
/// decompressed without a fault. A body that is cut off gives everything up to the cut. What
/// follows the end of the first gzip member is not decompressed.
///
/// However well the body is compressed, the stream keeps at most one step of compressed and one of
/// decompressed bytes, beside zlib's own state; what a read had put together when the inner
/// stream raised an exception is kept as well, and given out by the next read.
///
/// The time-outs for reading are those of the stream's own delegate, of which it has none unless
/// one is set. Thread safety: one thread at a time.
///
///     ZCIOGzipStream body(std::make_shared<ZCIOChunkedStream>(connection));
///     const foundation::Data page = *ZCIOUtils::readToEnd(body);
class ZCIOGzipStream : public ZCIODecoratingStream {
 public:
  using ZCIODecoratingStream::ZCIODecoratingStream;

  /// read:maxLength:
  ///
  /// Puts up to `maxLength` decompressed bytes into `buffer`: fewer than that only when the body
  /// ends. Returns how many, and 0 at the end, for a length of 0 and for a null buffer; never
  /// ZCIO_ERROR. Reads the inner stream in steps of 16 KiB, and up to its end once the body has
  /// proved damaged while more was wanted. An exception of the inner stream passes through, and
  /// loses nothing.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override;

  /// Decompressed bytes given out. Those that a read finds left over behind the end of the
  /// compressed data, fewer than it asked for, are not counted.
  std::uint64_t bytesRead() const override { return bytesRead_; }

  /// Always raise ZCIOStreamErrorException.
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override;
  foundation::TimeInterval writeTimeout() const override;
  void setWriteTimeout(foundation::TimeInterval timeout) override;
  std::uint64_t bytesWritten() const override;

 private:
  bool hasEnded() const;
  void beginInput();
  bool readInput();
  std::size_t takeAvailable(std::uint8_t* buffer, std::size_t maxLength);
  std::size_t takeDecompressed(std::uint8_t* buffer, std::size_t maxLength);
  std::size_t inflateStep(std::uint8_t* area);
  void endInput(int status);

  foundation::Data decompressedData_;
  std::size_t decompressedStart_ = 0;  // what stands before it in decompressedData_ is given out
  foundation::Data readedData_;        // the step of input that zInputStream_ works on
  std::uint64_t bytesRead_ = 0;
  int zInputStatus_ = 0;  // the last result of zlib; 1: the input has ended, -1: it is damaged
  ZCIOInflate zInputStream_;
  bool zInputNeedInit_ = true;
  bool zInputPending_ = false;  // the step of input may give more
};
