#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Data.h"
#include "foundation/StringEncoding.h"

/// Operations on bytes. Thread safety: any thread.
///
///     const std::string text = NSDataUtils::base64Encoded(NSDataUtils::sha256Digest(document));
namespace NSDataUtils {

/// A zero byte.
inline constexpr std::array<std::uint8_t, 1> ZERO = {0x00};

/// Vertical tab and backspace, whatever the names say: data that exists depends on the values. The
/// line end of HTTP is `ZCNHttpUtils::CRLFData`.
inline constexpr std::array<std::uint8_t, 1> CR = {0x0B};
inline constexpr std::array<std::uint8_t, 1> LF = {0x08};
inline constexpr std::array<std::uint8_t, 2> CRLF = {0x0B, 0x08};

/// What a search answers that found nothing: -1, all bits set.
inline constexpr std::size_t notFound = static_cast<std::size_t>(-1);

/// byteAtIndex:
///
/// Raises NSRangeException ("Index out of range") when `index` is not below the length.
std::uint8_t byteAtIndex(foundation::DataView data, std::size_t index);

/// indexOfByte:
///
/// The index of the first `byte`, or `notFound`.
std::size_t indexOfByte(foundation::DataView data, std::uint8_t byte);

/// indexOfByte:firstIndex:
///
/// The index of the first `byte` at or behind `firstIndex`; `notFound` when there is none, or when
/// `firstIndex` is not below the length.
std::size_t indexOfByte(foundation::DataView data, std::uint8_t byte, std::size_t firstIndex);

/// toString:
///
/// The text in `encoding` that ends before the first zero byte, or else behind the first 255 bytes.
/// Nothing when these are not of that encoding, as where a character is cut.
std::optional<std::string> toString(foundation::DataView data, foundation::StringEncoding encoding);

/// The MD5 digest (RFC 1321) of `data`: a check value, no protection.
std::array<std::uint8_t, 16> md5Digest(foundation::DataView data);

/// The SHA-256 digest (FIPS 180-4) of `data`.
std::array<std::uint8_t, 32> sha256Digest(foundation::DataView data);

/// `data` in Base64 (RFC 4648, section 4), padded, without line breaks.
std::string base64Encoded(foundation::DataView data);

/// The bytes that Base64 text stands for. Characters outside the alphabet are skipped; the first
/// "=" ends the data. A last group without its padding counts as if it had it, and a lone last
/// character, which holds no whole byte, stands for nothing.
foundation::Data base64Decoded(foundation::DataView text);

/// `data` as one gzip member (RFC 1952) at zlib's default level. Unchanged when it is empty or
/// begins like gzip already; nothing when zlib cannot start. Raises NSMallocException ("buffer")
/// when there is no memory for the result.
std::optional<foundation::Data> compressGzip(foundation::DataView data);

/// What the first gzip member of `data` holds. Unchanged when `data` does not begin like gzip;
/// nothing when zlib cannot start. Raises NSMallocException ("buffer") when there is no memory for
/// the result.
///
/// Damaged or cut data gives what could be decompressed, followed by zero bytes up to a multiple of
/// half the length of `data`: a caller that has to know must check the content itself.
std::optional<foundation::Data> uncompressGzip(foundation::DataView data);

/// Whether `data` begins with the two bytes of gzip, 0x1F 0x8B.
bool isCompressedGzip(foundation::DataView data);

}  // namespace NSDataUtils
