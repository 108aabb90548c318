#pragma once

#include <string_view>

#include "ZCommons/IO/ZCIODecoratingStream.h"

/// The chunked transfer coding (RFC 9112, section 7.1) over an inner stream: reading takes the
/// framing off, every write makes one chunk.
///
/// Reading never takes more from the inner stream than the body: the bytes of a chunk as the caller
/// asks for them, the lines between the chunks byte by byte. It allocates nothing but what a line
/// of more than 128 bytes, or one that is not ASCII, takes. Trailer fields are left in the inner
/// stream, but for the first line. Counters and time-outs are those of the inner stream; this
/// stream's counters stay 0.
///
/// A stream that is destroyed writes the last chunk unless that has been written, even when it was
/// only read from; what that raises ends there.
///
///     ZCIOChunkedStream body(connection);
///     body.write(bytes, 10);    // "A\r\n", the bytes, "\r\n"; returns 15
///     body.writeLastChunk();    // "0\r\n\r\n"
class ZCIOChunkedStream : public ZCIODecoratingStream {
 public:
  using ZCIODecoratingStream::ZCIODecoratingStream;
  ~ZCIOChunkedStream() override;

  /// read:maxLength:
  ///
  /// Reads up to `maxLength` bytes of the body into `buffer`, across chunks, and fewer only at its
  /// end; 0 from then on. A body ends with its last chunk, and as well where no line, a second
  /// empty line or a line without a size stands in the place of a size line.
  /// ZCIO_ERROR when the inner stream ends or fails inside a chunk: what the call had read before
  /// is then not reported. The next call tries the inner stream again.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override;

  /// write:maxLength:
  ///
  /// Writes `maxLength` bytes of `buffer` as one chunk, by one write of the inner stream; a length
  /// of 0 is `writeLastChunk`. Returns the length of the chunk with its framing, which is more than
  /// `maxLength`; ZCIO_ERROR for a null buffer, and when the inner stream took less, of which
  /// nothing is written again. A chunk behind the last chunk is written all the same.
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override;

  /// Ends the body. Returns 5, the bytes written; 0 when the last chunk was written before, or its
  /// writing was tried; ZCIO_ERROR when the inner stream did not take it.
  std::int64_t writeLastChunk();

  /// getChunkLength:
  ///
  /// The size that a size line states: a hexadecimal number behind optional white space and "0x",
  /// up to the first other character. At most 0xFFFFFFFF, also for larger numbers; 0 when there is
  /// no number.
  static std::int64_t getChunkLength(std::string_view line);

 private:
  std::int64_t readNextChunkLength();
  void readLineBehindLastChunk();
  void writeErrorFromResult(std::int64_t result) const;

  std::int64_t currentChunkLength_ = -1;  // -1 before the first chunk, 0 behind the last one
  std::int64_t currentChunkReadBytes_ = 0;
  bool finishedWriting_ = false;
};
