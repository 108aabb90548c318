#pragma once

#include <optional>

#include "foundation/Data.h"
#include "foundation/NullableText.h"

/// AES-128 (FIPS 197) in CBC mode with PKCS #7 padding, for data that exists already: the key is
/// the initialisation vector too, so equal beginnings encrypt alike, and nothing tells whether
/// encrypted data was changed. New formats want authenticated encryption.
///
/// A key is cut, or filled up with zero bytes, to 16 bytes. Every operation gives nothing when it
/// fails. Thread safety: any thread.
namespace NSDataEncryption {

/// AES128EncryptWithData:
///
/// The encrypted form of `data`: 1 to 16 bytes longer, a multiple of 16.
std::optional<foundation::Data> AES128EncryptWithData(foundation::DataView data,
                                                      foundation::DataView key);

/// AES128DecryptWithData:
///
/// What was encrypted to `data`; nothing when the length is no multiple of 16 above 0, or when what
/// comes out is not padded, as with most wrong keys.
std::optional<foundation::Data> AES128DecryptWithData(foundation::DataView data,
                                                      foundation::DataView key);

/// AES128EncryptWithKey:
///
/// As `AES128EncryptWithData`, with the bytes of a UTF-8 text as the key; null is an empty key.
std::optional<foundation::Data> AES128EncryptWithKey(foundation::DataView data,
                                                     foundation::NullableText key);

/// AES128DecryptWithKey:
///
/// As `AES128DecryptWithData`, with the bytes of a UTF-8 text as the key; null is an empty key.
std::optional<foundation::Data> AES128DecryptWithKey(foundation::DataView data,
                                                     foundation::NullableText key);

}  // namespace NSDataEncryption
