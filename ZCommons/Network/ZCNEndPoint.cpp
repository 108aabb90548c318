#include "ZCommons/Network/ZCNEndPoint.h"

#include <utility>

#include "foundation/Format.h"
#include "foundation/Unicode.h"

namespace {

const char* flagText(std::uint8_t filteringFlag) {
  switch (filteringFlag) {
    case ZCNEndPoint::allow:
      return "Allow";
    case ZCNEndPoint::block:
      return "Block";
    default:
      return "Filter";
  }
}

}  // namespace

ZCNEndPoint::ZCNEndPoint(std::string host, std::uint16_t port, std::uint8_t filteringFlag)
    : host_(std::move(host)), port_(port), filteringFlag_(filteringFlag) {}

std::optional<ZCNEndPoint> ZCNEndPoint::initWithHost(foundation::NullableText host,
                                                     std::uint16_t port,
                                                     std::uint8_t filteringFlag) {
  if (foundation::isBlank(host.view())) return std::nullopt;
  return ZCNEndPoint(host.string(), port, filteringFlag);
}

std::string ZCNEndPoint::description() const {
  return foundation::format("[ZCNEndPoint (%p) host: %@, port: %d, filtering flag: %@]",
                            static_cast<const void*>(this), host_, port_, flagText(filteringFlag_));
}

bool ZCNEndPoint::isEqual(const foundation::Object& other) const {
  const auto* const endPoint = dynamic_cast<const ZCNEndPoint*>(&other);
  return endPoint && *endPoint == *this;
}

std::size_t ZCNEndPoint::hash() const {
  return std::hash<std::string>()(host_) + port_ + filteringFlag_;
}

std::strong_ordering operator<=>(const ZCNEndPoint& a, const ZCNEndPoint& b) {
  if (const auto order = a.host_ <=> b.host_; order != 0) return order;
  if (const auto order = a.port_ <=> b.port_; order != 0) return order;
  return a.filteringFlag_ <=> b.filteringFlag_;
}
