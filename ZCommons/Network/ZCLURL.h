#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "foundation/NullableText.h"
#include "foundation/URL.h"
#include "foundation/Value.h"

/// An immutable URL made from a text as people write it, which shows itself without percent
/// escapes.
///
/// A value, equal to another when the absolute strings are; a key of hashed containers. A text that
/// is no URL still makes an object, whose URL and texts are null. Any number of threads may use one
/// at once.
///
///     const auto base = ZCLURL::URLWithString("http://example.com/docs/");
///     const auto page = ZCLURL::URLWithString("../a b", base);
///     page->absoluteString();   // "http://example.com/a b"
class ZCLURL final : public foundation::Object {
 public:
  /// initWithURLString:
  ///
  /// The URL of `rightUrlEscaping(string)`, "." and ".." removed from its path. Nothing for a null
  /// or empty text.
  static std::optional<ZCLURL> initWithURLString(foundation::NullableText string);

  /// initWithURLString:relativeToURL:
  ///
  /// As above, with the URL resolved against that of `baseURL` (RFC 3986, section 5.2); a base that
  /// is null, or whose URL is null, counts as none.
  static std::optional<ZCLURL> initWithURLString(foundation::NullableText string,
                                                 const std::optional<ZCLURL>& baseURL);

  /// As `initWithURLString`.
  static std::optional<ZCLURL> URLWithString(foundation::NullableText string);

  /// URLWithString:relativeToURL:
  ///
  /// As `initWithURLString`.
  static std::optional<ZCLURL> URLWithString(foundation::NullableText string,
                                             const std::optional<ZCLURL>& baseURL);

  /// `string` with the characters illegal in URLs escaped as UTF-8, and "#" left alone; null for
  /// null. A "%" is escaped too: the text is one without escapes.
  static std::optional<std::string> rightUrlEscaping(foundation::NullableText string);

  /// The URL, with its escapes; null when the text was none.
  const std::optional<foundation::URL>& nsUrl() const { return url_; }

  /// The URL's absolute string, scheme and host with percent escapes replaced using UTF-8; null
  /// where the URL has none, and where the bytes are not UTF-8.
  const std::optional<std::string>& absoluteString() const { return absoluteString_; }
  const std::optional<std::string>& scheme() const { return scheme_; }
  const std::optional<std::string>& host() const { return host_; }

  /// The absolute string; "(null)" when that is null.
  std::string description() const override;

  /// Whether `other` is a ZCLURL with an equal absolute string, or null as this one.
  bool isEqual(const foundation::Object& other) const override;

  /// The hash of the absolute string; 0 when that is null.
  std::size_t hash() const override;

 private:
  explicit ZCLURL(std::optional<foundation::URL> url);

  void parseMethod2();

  std::optional<foundation::URL> url_;
  std::optional<std::string> absoluteString_;
  std::optional<std::string> scheme_;
  std::optional<std::string> host_;
};

template <>
struct std::hash<ZCLURL> {
  std::size_t operator()(const ZCLURL& url) const { return url.hash(); }
};
