#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Host names and URLs between their Unicode form and their ASCII form.
///
/// Nothing here logs, or raises but for a lack of memory. An ill-formed piece of UTF-8 reads as
/// U+FFFD wherever a text is encoded or normalised; `IDNADecodedString` copies what it does not
/// decode as it is. Thread safety: any thread.
///
///     NSStringPunycodeAdditions::encodedURLString("http://b\u00FCcher.example:8080/a b");
///     // http://xn--bcher-kva.example:8080/a%20b
namespace NSStringPunycodeAdditions {

/// The Punycode form (RFC 3492) of one label, without a prefix: the basic code points, "-" if
/// there are any, then the others as deltas in lower case. So "abc" gives "abc-", and "" gives "".
/// Nothing on an overflow of 32 bits.
std::optional<std::string> punycodeEncodedString(std::string_view label);

/// The label that `text`, without a prefix, is the Punycode form of. Digits of either case count.
/// Nothing when `text` is malformed, overflows 32 bits, or yields a surrogate or a value above
/// U+10FFFF.
std::optional<std::string> punycodeDecodedString(std::string_view text);

/// The host name with every label that holds anything but U+0001 to U+007F replaced by "xn--" and
/// its Punycode form, after normalisation to NFKC. Labels are what stands between "." and "@", so
/// the domain of a mail address is encoded as well, and so is its user.
///
/// This is not the ToASCII operation of IDNA: labels are neither folded to lower case nor checked
/// in any other way. White space in front of a label or a separator is dropped. A label whose
/// encoding overflows becomes "xn--(null)".
std::string IDNAEncodedString(std::string_view host);

/// The host name with every label that starts with "xn--", in either case, replaced by its decoded
/// form. A malformed one is left out; its separators stay. White space in front of a label or a
/// separator is dropped; nothing is normalised.
std::string IDNADecodedString(std::string_view host);

/// The parts of a URL, as `URLParts` cuts it.
struct Parts {
  std::string scheme;                   ///< before the first ":"; empty when there is none
  std::string delim;                    ///< the run of ":" and "/" behind the scheme, usually "://"
  std::string host;                     ///< up to the next ":" or "/", without a user name
  std::string path;                     ///< from there to "#", a port included
  std::optional<std::string> username;  ///< before "@"
  std::optional<std::string> password;  ///< between ":" and "@"
  std::optional<std::string> fragment;  ///< behind "#", up to the first line break; never empty

  friend bool operator==(const Parts&, const Parts&) = default;
};

/// The parts of `text`, normalised to NFKC. White space in front of a part is dropped.
///
/// The cut is plainer than that of RFC 3986. Without a ":" the first part is the host. The host
/// ends at its first ":" or "/", so a port, or a password and what follows it, is the start of the
/// path, and a query or fragment without a path belongs to the host. A text that ends with the
/// delimiter has the scheme's word as its host, too.
Parts URLParts(std::string_view text);

/// Splits "user@" or "user:password@" off the host of `parts`. `URLParts` has done so already, and
/// finds no password; this is for hosts from elsewhere. A host without either stays as it is.
void splitHost(Parts& parts);

/// A Unicode URL in ASCII: the host as `IDNAEncodedString` gives it, the path percent-escaped where
/// a URL may not hold a character ("%" stays, so escapes are kept). User name, password and
/// fragment are written as they are.
std::string encodedURLString(std::string_view text);

/// A URL for people to read: the host as `IDNADecodedString` gives it, the path with its percent
/// escapes replaced, or "(null)" when one is malformed or they are not UTF-8. User name and
/// password are dropped.
std::string decodedURLString(std::string_view text);

/// longCharactersWithCount:
///
/// The code points of `text`; their count is the result's size.
std::u32string longCharactersWithCount(std::string_view text);

}  // namespace NSStringPunycodeAdditions
