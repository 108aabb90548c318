#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/Error.h"
#include "platform/FileHandle.h"

namespace platform {

/// Reads and writes through a descriptor (a file, pipe or socket) within a given time.
///
/// Time-outs are seconds for the call as a whole, told on a clock that nobody sets: 0 does only
/// what can be done at once, a negative one (or one that is no number) waits as long as it takes. A
/// call that ran out of time fails with ETIMEDOUT. A regular file never waits.
///
/// It does not matter whether the descriptor blocks: its flags, which other processes may share,
/// are not touched. A closed peer is an error, EPIPE, and never a signal. Where others read or
/// write the same blocking pipe, they may make a call wait longer than told.
///
/// Thread safety: one thread may read while another writes.
///
///     const platform::Channel channel(std::move(socket));
///     const auto count = channel.read(buffer, sizeof buffer, 30);
class Channel {
 public:
  /// Owns `handle`.
  explicit Channel(FileHandle handle);

  /// Reads what there is, up to `length` bytes, and waits for the first of them; 0 at the end.
  foundation::Result<std::size_t> read(std::uint8_t* buffer, std::size_t length,
                                       foundation::TimeInterval timeout) const;

  /// Writes all bytes, and returns their number. When the time is over or writing fails, it is the
  /// number of those that were written before, or the error when none were.
  foundation::Result<std::size_t> write(foundation::DataView data,
                                        foundation::TimeInterval timeout) const;

 private:
  enum class Kind { file, socket, other };

  static Kind kindOf(const FileHandle& handle);

  FileHandle handle_;
  Kind kind_;
};

}  // namespace platform
