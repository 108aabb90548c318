#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "foundation/NullableText.h"
#include "foundation/Value.h"

/// A network end point, host and port, with the decision how connections to it are filtered.
///
/// A value: works as key of hashed and of ordered containers. Immutable but for assignment; any
/// number of threads may use one at once.
///
///     std::unordered_set<ZCNEndPoint> blocked;
///     if (auto endPoint = ZCNEndPoint::initWithHost(host, 443, ZCNEndPoint::block)) {
///       blocked.insert(*std::move(endPoint));
///     }
class ZCNEndPoint final : public foundation::Object {
 public:
  /// The filtering flags. Every value that is not named here filters as well.
  enum FilteringFlag : std::uint8_t { filter = 0, allow = 1, block = 2 };

  /// initWithHost:port:filteringFlag:
  ///
  /// The three values as they are: no trimming, no case folding, no check of the host's form.
  /// Nothing when the host is null, empty or white space (Unicode's) only.
  static std::optional<ZCNEndPoint> initWithHost(foundation::NullableText host, std::uint16_t port,
                                                 std::uint8_t filteringFlag);

  const std::string& host() const { return host_; }
  std::uint16_t port() const { return port_; }
  std::uint8_t filteringFlag() const { return filteringFlag_; }

  /// "[ZCNEndPoint (0x…) host: example.com, port: 443, filtering flag: Block]", the flag being
  /// "Allow", "Block" or "Filter".
  std::string description() const override;

  /// Whether `other` is an end point with the same host, byte by byte, the same port and the same
  /// flag.
  bool isEqual(const foundation::Object& other) const override;

  /// The hash of the host plus the port plus the flag.
  std::size_t hash() const override;

  /// As `isEqual`.
  friend bool operator==(const ZCNEndPoint& a, const ZCNEndPoint& b) { return (a <=> b) == 0; }

  /// By host, byte by byte, then port, then flag.
  friend std::strong_ordering operator<=>(const ZCNEndPoint& a, const ZCNEndPoint& b);

 private:
  ZCNEndPoint(std::string host, std::uint16_t port, std::uint8_t filteringFlag);

  std::string host_;
  std::uint16_t port_;
  std::uint8_t filteringFlag_;
};

template <>
struct std::hash<ZCNEndPoint> {
  std::size_t operator()(const ZCNEndPoint& endPoint) const { return endPoint.hash(); }
};
