#include "logging/DDTTYColor.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "foundation/Format.h"

namespace {

using Entry = DDTTYColorTable::Entry;

constexpr std::size_t systemColors = 16;

constexpr std::array<Entry, systemColors> sixteenColors{{
    {0, 0, 0},
    {194, 54, 33},
    {37, 188, 36},
    {173, 173, 39},
    {73, 46, 225},
    {211, 56, 211},
    {51, 187, 200},
    {203, 204, 205},
    {129, 131, 131},
    {252, 57, 31},
    {49, 231, 34},
    {234, 236, 35},
    {88, 51, 255},
    {249, 53, 248},
    {20, 240, 240},
    {233, 235, 235},
}};

// Terminal colours 16 to 255. The first six are measured, the others what terminals document: a
// cube of six levels, then greys.
constexpr std::array<Entry, 240> makeManyColors() {
  constexpr std::array<Entry, 6> measured{{
      {47, 49, 49},
      {60, 42, 144},
      {66, 44, 183},
      {73, 46, 222},
      {81, 50, 253},
      {88, 51, 255},
  }};
  constexpr std::uint8_t levels[] = {0, 95, 135, 175, 215, 255};
  constexpr std::size_t cube = 216;
  std::array<Entry, 240> colors{};
  for (std::size_t i = 0; i < cube; ++i) {
    colors[i] = {levels[i / 36], levels[i / 6 % 6], levels[i % 6]};
  }
  for (std::size_t i = cube; i < colors.size(); ++i) {
    const auto grey = static_cast<std::uint8_t>(8 + 10 * (i - cube));
    colors[i] = {grey, grey, grey};
  }
  for (std::size_t i = 0; i < measured.size(); ++i) colors[i] = measured[i];
  return colors;
}

constexpr std::array<Entry, 240> manyColors = makeManyColors();

constexpr char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  std::string lower(text);
  for (char& c : lower) c = lowerCase(c);
  return lower.find(part) != std::string::npos;
}

}  // namespace

const DDTTYColorTable& DDTTYColorTable::ofTerminal() {
  static const auto& table = *new DDTTYColorTable(std::getenv("TERM"));
  return table;
}

DDTTYColorTable::DDTTYColorTable(const char* term) {
  if (!term || !containsIgnoringCase(term, "color")) return;
  if (containsIgnoringCase(term, "256")) {
    palette_ = manyColors;
  } else {
    palette_ = sixteenColors;
  }
}

std::size_t DDTTYColorTable::codeIndexForColor(const DDColor& color) const {
  std::size_t best = 0;
  double shortest = 100;
  for (std::size_t i = 0; i < palette_.size(); ++i) {
    const double distance =
        std::hypot(palette_[i].red / 255.0 - color.red, palette_[i].green / 255.0 - color.green,
                   palette_[i].blue / 255.0 - color.blue);
    if (!(distance < shortest)) continue;  // nothing is near to what is no number
    shortest = distance;
    best = i;
  }
  return best;
}

std::string DDTTYColorTable::foregroundCode(std::size_t index) const {
  if (palette_.size() > systemColors) return foundation::format("38;5;%zum", index + systemColors);
  return foundation::format(index < 8 ? "3%zum" : "1;3%zum", index % 8);
}

std::string DDTTYColorTable::backgroundCode(std::size_t index) const {
  if (palette_.size() > systemColors) return foundation::format("48;5;%zum", index + systemColors);
  return foundation::format(index < 8 ? "4%zum" : "1;4%zum", index % 8);
}
