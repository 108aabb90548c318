#pragma once

#include <string_view>

/// What hosts look like: three patterns in ICU's expression language, and matchers that answer
/// whether the whole of a text matches, without regard to case, as the engine would.
///
/// The matchers run no expression: they look at each byte once and never allocate, where the engine
/// takes exponential time for some domain names. Bytes that are not UTF-8 match nothing; as in the
/// engine, U+017F and U+212A count as the letters s and k, and a line end at the end is no match.
/// Thread safety: any thread.
namespace ZCNHostPatterns {

inline constexpr std::string_view domainName =
    R"(^(([a-zA-Z0-9]|[a-zA-Z0-9][a-zA-Z0-9\-]*[a-zA-Z0-9])\.)*([A-Za-z0-9]|[A-Za-z0-9][A-Za-z0-9\-]*[A-Za-z0-9])$)";

inline constexpr std::string_view IPv4 =
    R"(^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$)";

inline constexpr std::string_view IPv6 =
    R"(^((([0-9A-Fa-f]{1,4}:){7}([0-9A-Fa-f]{1,4}|:)))"
    R"(|(([0-9A-Fa-f]{1,4}:){6}(:[0-9A-Fa-f]{1,4}|((25[0-5]|2[0-4]\d|1\d\d)"
    R"(|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3})|:)))"
    R"(|(([0-9A-Fa-f]{1,4}:){5}(((:[0-9A-Fa-f]{1,4}){1,2})|:((25[0-5]|2[0-4]\d|1\d\d)"
    R"(|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3})|:)))"
    R"(|(([0-9A-Fa-f]{1,4}:){4}(((:[0-9A-Fa-f]{1,4}){1,3})|((:[0-9A-Fa-f]{1,4})?:((25[0-5])"
    R"(|2[0-4]\d|1\d\d|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3}))|:)))"
    R"(|(([0-9A-Fa-f]{1,4}:){3}(((:[0-9A-Fa-f]{1,4}){1,4})|((:[0-9A-Fa-f]{1,4}){0,2}:((25[0-5])"
    R"(|2[0-4]\d|1\d\d|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3}))|:)))"
    R"(|(([0-9A-Fa-f]{1,4}:){2}(((:[0-9A-Fa-f]{1,4}){1,5})|((:[0-9A-Fa-f]{1,4}){0,3}:((25[0-5])"
    R"(|2[0-4]\d|1\d\d|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3}))|:)))"
    R"(|(([0-9A-Fa-f]{1,4}:){1}(((:[0-9A-Fa-f]{1,4}){1,6})|((:[0-9A-Fa-f]{1,4}){0,4}:((25[0-5])"
    R"(|2[0-4]\d|1\d\d|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3}))|:)))"
    R"(|(:(((:[0-9A-Fa-f]{1,4}){1,7})|((:[0-9A-Fa-f]{1,4}){0,5}:((25[0-5]|2[0-4]\d|1\d\d)"
    R"(|[1-9]?\d)(\.(25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)){3}))|:)))$)";

/// Whether `text` matches `domainName`: labels of letters, digits and inner hyphens between dots.
bool matchesDomainName(std::string_view text);

/// Whether `text` matches `IPv4`: four numbers up to 255 of one to three digits, leading zeros
/// included.
bool matchesIPv4(std::string_view text);

/// Whether `text` matches `IPv6`: eight groups, or fewer with one "::", the last two written as
/// IPv4 numbers or not. Those have no leading zeros; any decimal digit of Unicode stands where the
/// pattern says "\d".
bool matchesIPv6(std::string_view text);

}  // namespace ZCNHostPatterns
