#include <array>
#include <bit>
#include <cstring>
#include <string_view>

#include "ZCommons/IO/NSDataUtils.h"

using foundation::Data;
using foundation::DataView;

namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The two characters for every 12 bits.
constexpr auto pairs = [] {
  std::array<std::array<char, 2>, 4096> table{};
  for (std::size_t bits = 0; bits < table.size(); ++bits) {
    table[bits] = {alphabet[bits >> 6], alphabet[bits & 63]};
  }
  return table;
}();

constexpr std::uint32_t noCharacter = 1u << 31;

// For every byte the six bits that it stands for, `shift` bits up.
constexpr auto bitsTable(unsigned shift) {
  std::array<std::uint32_t, 256> table{};
  table.fill(noCharacter);
  for (std::uint32_t bits = 0; bits < alphabet.size(); ++bits) {
    table[static_cast<unsigned char>(alphabet[bits])] = bits << shift;
  }
  return table;
}

constexpr std::array<std::array<std::uint32_t, 256>, 4> places = {bitsTable(18), bitsTable(12),
                                                                  bitsTable(6), bitsTable(0)};

// Eight bytes at a time go through one word, the first byte on top.
std::uint64_t bigEndian(std::uint64_t word) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

std::uint64_t load(const std::uint8_t* place) {
  std::uint64_t word;
  std::memcpy(&word, place, sizeof word);
  return bigEndian(word);
}

void store(std::uint8_t* place, std::uint64_t word) {
  word = bigEndian(word);
  std::memcpy(place, &word, sizeof word);
}

// The 24 bits of the four characters in the lower half of `word`.
std::uint32_t groupBits(std::uint64_t word) {
  return places[0][word >> 24 & 255] | places[1][word >> 16 & 255] | places[2][word >> 8 & 255] |
         places[3][word & 255];
}

void putPair(char* place, std::uint64_t bits) { std::memcpy(place, pairs[bits & 4095].data(), 2); }

}  // namespace

std::string NSDataUtils::base64Encoded(DataView data) {
  std::string text((data.size() + 2) / 3 * 4, '=');
  char* out = text.data();
  for (; data.size() >= 8; data = data.subspan(6), out += 8) {
    const std::uint64_t bits = load(data.data()) >> 16;  // the bits of six bytes
    putPair(out, bits >> 36);
    putPair(out + 2, bits >> 24);
    putPair(out + 4, bits >> 12);
    putPair(out + 6, bits);
  }
  for (; data.size() >= 3; data = data.subspan(3), out += 4) {
    const std::uint32_t bits = std::uint32_t{data[0]} << 16 | std::uint32_t{data[1]} << 8 | data[2];
    putPair(out, bits >> 12);
    putPair(out + 2, bits);
  }
  if (data.empty()) return text;
  const std::uint32_t second = data.size() == 2 ? data[1] : 0;
  putPair(out, std::uint32_t{data[0]} << 4 | second >> 4);
  if (data.size() == 2) out[2] = alphabet[(second & 15) << 2];
  return text;
}

Data NSDataUtils::base64Decoded(DataView text) {
  Data data(text.size() / 4 * 3 + 8);
  const std::uint8_t* in = text.data();
  const std::uint8_t* const end = in + text.size();
  std::uint8_t* out = data.data();
  std::uint32_t group = 0;
  std::size_t held = 0;  // characters of `group`
  while (true) {
    // Groups that stand together go through as a whole.
    for (; held == 0 && end - in >= 8; in += 8, out += 6) {
      const std::uint64_t word = load(in);
      const std::uint64_t first = groupBits(word >> 32), second = groupBits(word);
      if ((first | second) & noCharacter) break;
      store(out, first << 40 | second << 16);
    }
    if (in == end) break;
    const std::uint8_t character = *in++;
    if (character == '=') break;
    const std::uint32_t bits = places[held][character];
    if (bits & noCharacter) continue;
    group |= bits;
    if (++held < 4) continue;
    store(out, std::uint64_t{group} << 40);
    out += 3;
    group = 0;
    held = 0;
  }
  store(out, std::uint64_t{group} << 40);
  if (held > 1) out += held - 1;
  data.resize(static_cast<std::size_t>(out - data.data()));
  return data;
}
