#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ZCommons/IO/ZCIOStream.h"
#include "foundation/Data.h"
#include "foundation/StringEncoding.h"

/// Conveniences over any stream.
///
/// An exception that a stream raises passes through. Thread safety: that of the stream; the
/// settings may be read and set from any thread, and are meant to be set once at the start.
class ZCIOUtils {
 public:
  ZCIOUtils() = delete;

  /// Bytes that a line's buffer has at first, and by which it grows at least; 128 unless set.
  static std::int64_t lineBufferSize();
  static void setLineBufferSize(std::int64_t size);

  /// readLineBytes:
  ///
  /// The bytes up to and including the next line feed, or up to the end of data (empty there).
  /// Nothing when a read fails with ZCIO_ERROR: what was read is then lost. Reads byte by byte, so
  /// the stream stands right behind the line feed. Raises NSMallocException ("buffer") when there
  /// is no memory, or the line buffer's size is negative.
  static std::optional<foundation::Data> readLineBytes(ZCIOStream& stream);

  /// readLine:
  ///
  /// As `readLine(stream, encoding)`, in ISO Latin-1.
  static std::optional<std::string> readLine(ZCIOStream& stream);

  /// readLine:encoding:
  ///
  /// The next line as text, without its line end; nothing at the end of data and on failure.
  static std::optional<std::string> readLine(ZCIOStream& stream,
                                             foundation::StringEncoding encoding);

  /// toStringRemovingTrailingCrLf:
  ///
  /// As `toStringRemovingTrailingCrLf(data, encoding)`, in ISO Latin-1.
  static std::string toStringRemovingTrailingCrLf(foundation::DataView data);

  /// toStringRemovingTrailingCrLf:encoding:
  ///
  /// `data` as text, without the line ends (LF, CR, NEL, U+2028, U+2029) at its beginning and end.
  /// Bytes that are not of `encoding` are taken as ISO Latin-1.
  static std::string toStringRemovingTrailingCrLf(foundation::DataView data,
                                                  foundation::StringEncoding encoding);
};
