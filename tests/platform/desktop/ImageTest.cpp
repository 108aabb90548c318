#include <gtest/gtest.h>

#include "platform/desktop/Image.h"
#include "tests/platform/desktop/Pictures.h"

using platform::Image;
using support::element;
using support::picture;
using support::PNG;

namespace {

std::optional<Image> read(std::string_view file) {
  return Image::imageWithData(foundation::dataOf(file));
}

/// 128 pixels a side of one colour, its channels packed by runs of 130 and one of 4.
std::string runs() {
  std::string data(4, '\0');
  for (const char channel : {'\1', '\2', '\3'}) {
    for (int i = 0; i < 126; ++i) (data += '\xff') += channel;
    (data += '\x81') += channel;
  }
  return data;
}

Image oneColor(std::uint32_t side, const foundation::Data& pixel) {
  Image image{side, side, {}};
  for (std::uint32_t i = 0; i < side * side; ++i) foundation::append(image.pixels, pixel);
  return image;
}

std::string changed(std::string data, std::size_t index, int difference) {
  data.at(index) = static_cast<char>(data.at(index) ^ difference);
  return data;
}

}  // namespace

TEST(Image, ReadsPNG) {
  const std::string file = PNG(5, 3);
  EXPECT_EQ(read(file), picture(5, 3));
  for (std::size_t i = 0; i < file.size() - 4; ++i) {
    EXPECT_FALSE(read(file.substr(0, i))) << i;
    EXPECT_FALSE(i >= file.find("IDAT") - 4 && read(changed(file, i, 0x55))) << i;
  }
  EXPECT_FALSE(read(PNG(Image::maximumSide + 1, 1)));
}

TEST(Image, ReadsTheLargestPictureOfAnIconFile) {
  const auto seed = platform::FileSystem::readFile(FUZZ_CORPUS "/image_icns/jp2");
  const std::string jp2(foundation::textOf(*seed).substr(16)), packed = runs();
  const std::size_t channelCount = jp2.find("\xff\x51") + 39;
  const std::string small = element("ic11", PNG(8, 8)), large = element("ic08", PNG(64, 64));
  const std::pair<std::string, std::optional<Image>> rows[] = {
      {element("TOC ", "12") + small + large, picture(64, 64)},
      {small + changed(large, 99, 1), picture(8, 8)},
      {small + element("ic08", jp2), oneColor(64, {9, 9, 9, 9})},
      {small + element("ic08", changed(jp2, channelCount, 1)), picture(8, 8)},
      {element("t8mk", std::string(128 * 128, '\7')) + element("it32", packed) + large,
       oneColor(128, {1, 2, 3, 7})},
      {element("it32", packed) + element("t8mk", "short"), oneColor(128, {1, 2, 3, 255})},
      {element("it32", packed.substr(0, packed.size() - 1)), std::nullopt},
      {element("it32", changed(packed, 4, 1)), std::nullopt},
      {element("ICN#", std::string(256, '\xff')), oneColor(32, {0, 0, 0, 255})},
      {changed(large, 7, 0xff), std::nullopt},  // a length that does not fit
  };
  for (const auto& [elements, image] : rows) {
    const std::string file = element("icns", elements);
    EXPECT_EQ(read(file), image) << "row " << &elements - &rows[0].first;
    for (std::size_t length = 0; length < file.size(); length += 1 + length / 8) {
      EXPECT_FALSE(read(file.substr(0, length))) << length;
    }
  }
}
