#pragma once

#include "ZCommons/IO/ZCIODecoratingStream.h"
#include "ZCommons/IO/ZCIOMemoryBuffer.h"
#include "foundation/Data.h"

/// A stream whose next bytes can be looked at before they are read.
///
///     std::uint8_t start[2];
///     ZCIOPeekingStream body(connection);
///     body.peek(start, 2);       // the first two bytes; a second peek shows the two behind them
///     body.read(buffer, 100);    // begins with the first byte all the same
class ZCIOPeekingStream : public ZCIODecoratingStream {
 public:
  using ZCIODecoratingStream::ZCIODecoratingStream;

  /// peek:maxLength:
  ///
  /// Reads the next `maxLength` bytes of the inner stream, which are those behind what was peeked
  /// before, copies them into `buffer` and keeps them for later reads. Returns their number, less
  /// than `maxLength` when the inner stream ends or fails; ZCIO_ERROR for a null buffer.
  /// Raises NSMallocException ("buffer") when there is no memory.
  std::int64_t peek(std::uint8_t* buffer, std::size_t maxLength);

  /// storePeekingBytes:
  ///
  /// Hands `data` out to later reads, behind what was peeked and not read yet. It is taken for
  /// bytes of the inner stream: `bytesRead` sinks until they are read.
  void storePeekingBytes(foundation::DataView data);

  /// read:maxLength:
  ///
  /// Reads the peeked bytes first and, when there is room left in `buffer`, once from the inner
  /// stream. Returns the sum; a failure or end of the inner stream shows only when there was no
  /// peeked byte to read.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override;

  /// write:maxLength:
  ///
  /// Writes to the inner stream; its result.
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override;

  /// The bytes that were read, not counting those only peeked.
  std::uint64_t bytesRead() const override;

  /// The inner stream's.
  std::uint64_t bytesWritten() const override;

 private:
  ZCIOMemoryBuffer peeked_;
};
