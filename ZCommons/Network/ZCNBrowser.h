#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/NullableText.h"
#include "foundation/RegularExpression.h"

/// A web browser: its name, and how a user-agent value (RFC 9110, section 10.1.5) tells it and its
/// version.
///
/// Ill-formed UTF-8 in a value reads as U+FFFD. Immutable; any number of threads may use one at
/// once. The known browsers are made on first request and never destroyed.
///
///     const ZCNBrowser& browser = ZCNBrowser::detectBrowser(value);
///     if (&browser == &ZCNBrowser::CHROME()) ++chromes[browser.version(value).value_or("?")];
class ZCNBrowser {
 public:
  using Strings = std::vector<std::string>;

  /// initWithName:versionRegex:groupNumber:aliases:excludeList:
  ///
  /// A browser whose version is what capture group `groupNumber` (0: all of it) of the first match
  /// of `versionRegex`, upper and lower case being equal, holds. A pattern that does not compile
  /// leaves the browser without an expression, and its versions null.
  ZCNBrowser(std::string name, std::string_view versionRegex, std::int32_t groupNumber,
             Strings aliases, std::optional<Strings> excludeList);

  ZCNBrowser(const ZCNBrowser&) = delete;
  ZCNBrowser& operator=(const ZCNBrowser&) = delete;

  /// The known browsers.
  static const ZCNBrowser& OPERA();
  static const ZCNBrowser& INTERNET_EXPLORER();
  static const ZCNBrowser& MAXTHON();
  static const ZCNBrowser& FIREFOX();
  static const ZCNBrowser& CHROME();
  static const ZCNBrowser& SAFARI();

  /// The six above, in the order in which they are tried.
  static const std::array<const ZCNBrowser*, 6>& BROWSERS();

  /// The first of the known browsers that matches `userAgentValue`; Opera when none does, also for
  /// a null or empty value. Takes time that grows with the value's length.
  static const ZCNBrowser& detectBrowser(foundation::NullableText userAgentValue);

  const std::string& name() const { return name_; }

  /// Each of them, found in a value, tells the browser.
  const Strings& aliases() const { return aliases_; }

  /// Each of them, found in a value, rules the browser out.
  const std::optional<Strings>& excludeList() const { return excludeList_; }

  /// Null when the pattern did not compile.
  const std::optional<foundation::RegularExpression>& versionRegex() const { return versionRegex_; }

  std::int32_t versionRegexGroupNumber() const { return versionRegexGroupNumber_; }

  /// Whether the value holds an alias and none of the exclude list; case counts. A null or empty
  /// value matches no browser.
  bool isMatch(foundation::NullableText userAgentValue) const;

  /// This browser's version in the value, whether it matches or not. Null when there is none, also
  /// when the expression lacks the group. The expression runs only when its fixed text with a
  /// version behind it is in the value, or when it has another form than the known browsers' have.
  std::optional<std::string> version(foundation::NullableText userAgentValue) const;

 private:
  // What a pattern "prefix([0-9.]+)suffix" consists of.
  struct PlainPattern {
    std::string prefix;  // ends with a character that is neither letter, digit nor dot
    std::string suffix;  // does not begin with a digit or a dot
    static std::optional<PlainPattern> parse(std::string_view pattern);
    std::optional<std::string_view> firstVersion(std::string_view text) const;
  };

  const std::string name_;
  const Strings aliases_;
  const std::optional<Strings> excludeList_;
  const std::optional<foundation::RegularExpression> versionRegex_;
  const std::int32_t versionRegexGroupNumber_;
  const std::optional<PlainPattern> plainPattern_;
};
