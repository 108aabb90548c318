#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ZCommons/IO/ZCIOStream.h"
#include "foundation/Data.h"
#include "foundation/StringEncoding.h"

/// Conveniences over any stream.
///
/// Memory grows with the data that arrives: no more than 1 MiB is asked for at once before that
/// much has come, however large a length or a setting is. NSMallocException ("buffer") is raised
/// when there is no memory, and for a negative length or setting.
///
/// An exception that a stream raises passes through. Thread safety: that of the stream; the
/// settings may be read and set from any thread, and are meant to be set once at the start.
///
///     const auto request = ZCIOUtils::readLine(stream);            // "GET / HTTP/1.1"
///     const auto body = ZCIOUtils::readToEnd(stream, 1024);        // 1024 bytes at most
class ZCIOUtils {
 public:
  ZCIOUtils() = delete;

  /// Bytes that `readToEnd` and `copyFrom` ask for at once; 8192 unless set.
  static std::int64_t bufferSize();
  static void setBufferSize(std::int64_t size);

  /// Bytes that a line's buffer has at first, and by which it grows at least; 128 unless set.
  static std::int64_t lineBufferSize();
  static void setLineBufferSize(std::int64_t size);

  /// read:len:
  ///
  /// The next `len` bytes, read until there are so many; fewer when a read gives none or fails.
  static foundation::Data read(ZCIOStream& stream, std::int64_t len);

  /// Whether `byte` is one of the bytes of the UTF-8 and UTF-16 byte-order marks.
  static constexpr bool isBomByte(std::uint8_t byte) {
    return byte == 0xEF || byte == 0xBB || byte == 0xBF || byte == 0xFE || byte == 0xFF;
  }

  /// Whether `byte` is a tab, LF, CR or a space.
  static constexpr bool isEmptyOrWhitespaceByte(std::uint8_t byte) {
    return byte == 0x09 || byte == 0x0A || byte == 0x0D || byte == 0x20;
  }

  /// Whether every byte of `data` passes `isEmptyOrWhitespaceByte`; true without data.
  static bool isEmptyOrWhitespace(foundation::DataView data);

  /// readLineBytes:
  ///
  /// The bytes up to and including the next line feed, or up to the end of data (empty there).
  /// Nothing when a read fails with ZCIO_ERROR: what was read is then lost. Reads byte by byte, so
  /// the stream stands right behind the line feed.
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

  /// readToEnd:, readToEnd:length:
  ///
  /// The bytes up to the end of data or a failure, and no more than `length` unless that is
  /// ZCIO_UNLIMITED. Nothing, without a read, for a length of 0.
  static std::optional<foundation::Data> readToEnd(ZCIOStream& stream,
                                                   std::int64_t length = ZCIO_UNLIMITED);

  /// copyFrom:to:length:
  ///
  /// Reads `from` up to its end, a failure or `length` bytes, and writes each piece to `to` by one
  /// write, whatever becomes of that. Returns the number of bytes read; always 0 when `length` is
  /// ZCIO_UNLIMITED.
  static std::int64_t copyFrom(ZCIOStream& from, ZCIOStream& to, std::int64_t length);
};
