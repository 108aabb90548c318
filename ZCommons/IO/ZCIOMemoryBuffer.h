#pragma once

#include <deque>

#include "ZCommons/IO/ZCIOStream.h"
#include "foundation/Data.h"

/// A queue of bytes in memory: what is written is read once, in the same order.
///
/// Reading and writing cost time in proportion to the bytes moved, however many wait, and memory
/// goes back as it is read.
///
/// Thread safety: one thread at a time.
///
///     auto buffer = std::make_shared<ZCIOMemoryBuffer>();
///     ZCIOStream stream(buffer);
///     stream.write(bytes, 10);   // buffer->data() shows them, stream.read takes them out
class ZCIOMemoryBuffer : public ZCIOStreamDelegate {
 public:
  /// The bytes that wait, oldest first, in one piece; valid until the next read or write. Moves
  /// them together when they are not, at most once while their number doubles or they pass.
  foundation::DataView data();

  /// The number of bytes that wait.
  std::size_t length() const { return length_; }

  /// read:maxLength:stream:
  ///
  /// Moves the oldest bytes into `buffer`, as many as there are up to `maxLength`; 0 when none
  /// wait, which reads as the end of data.
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream& stream) override;

  /// write:maxLength:stream:
  ///
  /// Adds all `maxLength` bytes, which are not bytes of `data`, and returns their number. Raises
  /// NSMallocException ("buffer") when there is no memory, and adds none then.
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength,
                     ZCIOStream& stream) override;

 private:
  struct Block {
    foundation::Data bytes;  // never grows beyond its capacity, so never moves
    std::size_t start = 0;   // what stands before it has been read
  };

  void addBlock(std::size_t capacity);
  void removeFirstBlock();

  std::deque<Block> blocks_;
  std::size_t length_ = 0;
};
