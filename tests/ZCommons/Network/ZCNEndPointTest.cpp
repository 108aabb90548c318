#include <set>
#include <unordered_set>

#include <gtest/gtest.h>

#include "ZCommons/Network/ZCNEndPoint.h"
#include "foundation/Format.h"

TEST(ZCNEndPoint, IsMadeAndDescribedUnlessItsHostIsBlank) {
  for (const char* host : {static_cast<const char*>(nullptr), "", " \t\r\n", "\u00a0\u3000"}) {
    EXPECT_FALSE(ZCNEndPoint::initWithHost(host, 80, ZCNEndPoint::allow));
  }
  const char* const texts[] = {"Filter", "Allow", "Block", "Filter"};
  for (std::uint8_t flag = 0; flag < std::size(texts); ++flag) {
    const auto point = ZCNEndPoint::initWithHost(" A\xff", 65535, flag);
    const char* const form = "[ZCNEndPoint (%p) host:  A\xff, port: 65535, filtering flag: %s]";
    EXPECT_EQ(point->description(), foundation::format(form, &*point, texts[flag]));
  }
}

TEST(ZCNEndPoint, IsAKeyOfHashedAndOrderedContainers) {
  const std::tuple<const char*, std::uint16_t, std::uint8_t> fields[] = {
      {"a", 80, 1}, {"A", 80, 1}, {"a", 81, 1}, {"a", 80, 2}, {"a ", 80, 1}, {"a", 81, 0}};
  std::vector<ZCNEndPoint> points;
  for (const auto& [host, port, flag] : fields) {
    points.insert(points.end(), 2, ZCNEndPoint::initWithHost(host, port, flag).value());
  }
  EXPECT_EQ(std::unordered_set(points.begin(), points.end()).size(), std::size(fields));
  EXPECT_EQ(std::set(points.begin(), points.end()).size(), std::size(fields));
  EXPECT_FALSE(foundation::Value(std::make_shared<ZCNEndPoint>(points[0])) == "a");
}
