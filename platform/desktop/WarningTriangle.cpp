#include "platform/desktop/WarningTriangle.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace platform {
namespace {

constexpr std::uint32_t side = 64;

struct Point {
  double x;  // 0 at the axis
  double y;  // from the top; the picture is 1 wide and high
};

/// Whether the point is at least `inset` inside the triangle.
bool isInTriangle(Point point, double inset) {
  const double halfWidth = 0.5 * (point.y - 0.06) / 0.86;  // of the triangle at this height
  return point.y < 0.92 - inset && std::abs(point.x) < halfWidth - 1.155 * inset;
}

bool isInMark(Point point) {
  const bool isBar =
      point.y > 0.36 && point.y < 0.66 && std::abs(point.x) < 0.065 - 0.08 * (point.y - 0.36);
  return isBar || std::hypot(point.x, point.y - 0.75) < 0.05;
}

using Color = std::array<double, 4>;

Color colorAt(Point point) {
  if (!isInTriangle(point, 0)) return {0, 0, 0, 0};
  const bool isDark = isInMark(point) || !isInTriangle(point, 0.03);
  return isDark ? Color{60, 45, 0, 255} : Color{255, 204, 0, 255};
}

/// The mean over a grid of points in the pixel; colours count by their alpha.
Color colorOfPixel(std::uint32_t column, std::uint32_t row) {
  constexpr int grid = 4;
  Color sum{};
  for (int i = 0; i < grid * grid; ++i) {
    const int across = i % grid;
    const int down = i / grid;
    const double x = (column + (across + 0.5) / grid) / side;
    const double y = (row + (down + 0.5) / grid) / side;
    const Color color = colorAt({x - 0.5, y});
    std::transform(sum.begin(), sum.end(), color.begin(), sum.begin(), std::plus<>());
  }
  const double coloured = std::max(sum[3] / 255, 1.0);
  return {sum[0] / coloured, sum[1] / coloured, sum[2] / coloured, sum[3] / (grid * grid)};
}

}  // namespace

Image warningTriangle() {
  Image image{side, side, {}};
  image.pixels.reserve(std::size_t{4} * side * side);
  for (std::uint32_t row = 0; row < side; ++row) {
    for (std::uint32_t column = 0; column < side; ++column) {
      for (const double part : colorOfPixel(column, row)) {
        image.pixels.push_back(static_cast<std::uint8_t>(std::lround(part)));
      }
    }
  }
  return image;
}

}  // namespace platform
