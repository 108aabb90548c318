#include "ZCommons/Network/ZCNPunycode.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <unicode/utf8.h>

#include "ZCommons/Network/ZCNPunycodeInsertion.h"
#include "foundation/Data.h"
#include "foundation/Unicode.h"

namespace {

using Insertion = ZCNPunycodeInsertion;

constexpr std::uint32_t base = 36;
constexpr std::uint32_t tmin = 1;
constexpr std::uint32_t tmax = 26;
constexpr std::uint32_t skew = 38;
constexpr std::uint32_t damp = 700;
constexpr std::uint32_t initialBias = 72;
constexpr std::uint32_t initialN = 128;
constexpr char delimiter = '-';
constexpr std::uint64_t largest = std::numeric_limits<std::uint32_t>::max();

// At most `capacity` insertions; a label of usual length needs no allocation.
class Insertions {
 public:
  explicit Insertions(std::size_t capacity) {
    if (capacity <= few_.size()) return;
    many_ = std::make_unique_for_overwrite<Insertion[]>(capacity);
    begin_ = end_ = many_.get();
  }

  void add(std::uint32_t codePoint, std::uint64_t index) {
    *end_++ = {codePoint, static_cast<std::uint32_t>(index)};
  }
  std::span<Insertion> row() { return {begin_, end_}; }

 private:
  std::array<Insertion, 64> few_;
  std::unique_ptr<Insertion[]> many_;
  Insertion* begin_ = few_.data();
  Insertion* end_ = begin_;
};

constexpr std::uint32_t largestScaled = (base - tmin) * tmax / 2;

// What `adapt` adds at its end for each scaled delta: a table, since a division takes longer.
constexpr std::array<std::uint8_t, largestScaled + 1> biases = [] {
  std::array<std::uint8_t, largestScaled + 1> values{};
  for (std::uint32_t delta = 0; delta <= largestScaled; ++delta) {
    values[delta] = static_cast<std::uint8_t>((base - tmin + 1) * delta / (delta + skew));
  }
  return values;
}();

std::uint32_t adapt(std::uint32_t delta, std::uint32_t count, bool isFirst) {
  delta = isFirst ? delta / damp : delta / 2;
  delta += delta / count;
  std::uint32_t k = 0;
  for (; delta > largestScaled; k += base) delta /= base - tmin;
  return k + biases[delta];
}

std::uint32_t threshold(std::uint32_t k, std::uint32_t bias) {
  return k <= bias ? tmin : std::min(k - bias, tmax);
}

void appendInteger(std::string& output, std::uint32_t value, std::uint32_t bias) {
  constexpr char digits[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::uint32_t t = threshold(base, bias);
  for (std::uint32_t k = base; value >= t; t = threshold(k += base, bias)) {
    output += digits[t + (value - t) % (base - t)];
    value = (value - t) / (base - t);
  }
  output += digits[value];
}

// The value of each character as a digit; `base` for one that is none.
constexpr std::array<std::uint8_t, 256> digitValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(base);
  for (std::uint8_t i = 0; i < 26; ++i) values['a' + i] = values['A' + i] = i;
  for (std::uint8_t i = 0; i < 10; ++i) values['0' + i] = static_cast<std::uint8_t>(26 + i);
  return values;
}();

// Cuts the integer at the front of `digits` off; nothing when it is malformed or has over 32 bits.
inline std::optional<std::uint32_t> takeInteger(std::string_view& digits, std::uint32_t bias) {
  std::uint64_t value = 0;
  std::uint64_t weight = 1;
  for (std::uint32_t k = base; !digits.empty(); k += base) {
    const std::uint32_t digit = digitValues[static_cast<unsigned char>(digits.front())];
    digits.remove_prefix(1);
    value += digit * weight;
    if (digit == base || value > largest) return std::nullopt;
    const std::uint32_t t = threshold(k, bias);
    if (digit < t) return static_cast<std::uint32_t>(value);
    weight *= base - t;
    if (weight > largest) return std::nullopt;
  }
  return std::nullopt;
}

// Appends the integers that stand for insertions into `count` basic code points.
bool appendDigits(std::span<const Insertion> insertions, std::uint32_t count, std::string& output) {
  std::uint64_t n = initialN;
  std::uint64_t index = 0;
  std::uint32_t bias = initialBias;
  for (const Insertion& insertion : insertions) {
    ++count;
    const std::uint64_t delta = (insertion.codePoint - n) * count + insertion.index - index;
    if (delta > largest) return false;
    appendInteger(output, static_cast<std::uint32_t>(delta), bias);
    bias = adapt(static_cast<std::uint32_t>(delta), count, &insertion == &insertions.front());
    n = insertion.codePoint;
    index = insertion.index + std::uint64_t{1};
  }
  return true;
}

// Calls `insert` with the code point and the index of each insertion into `count` basic code
// points. False when the digits are malformed, or as soon as one inserts what is no character: then
// there is no label, whatever follows.
template <class Insert>
bool readDigits(std::string_view digits, std::uint64_t count, Insert insert) {
  std::uint64_t n = initialN;
  std::uint64_t index = 0;
  std::uint32_t bias = initialBias;
  while (!digits.empty()) {
    const std::optional<std::uint32_t> delta = takeInteger(digits, bias);
    if (!delta || index + *delta > largest || ++count > largest) return false;
    const auto sum = static_cast<std::uint32_t>(index + *delta);
    const auto places = static_cast<std::uint32_t>(count);
    bias = adapt(*delta, places, index == 0);
    n += sum / places;
    index = sum % places;
    if (n > 0x10FFFF || U_IS_SURROGATE(n)) return false;
    insert(static_cast<std::uint32_t>(n), static_cast<std::uint32_t>(index));
    ++index;
  }
  return true;
}

// Appends code points whose UTF-8 form has `size` bytes.
void appendUTF8(std::span<const std::uint32_t> label, std::size_t size, std::string& output) {
  std::size_t next = output.size();
  output.resize(next + size);
  char* const bytes = output.data();
  for (const std::uint32_t codePoint : label) U8_APPEND_UNSAFE(bytes, next, codePoint);
}

constexpr std::size_t shortLabel = 64;

// Inserts each code point in its turn, which is quickest for a label of usual length.
bool appendDecodedShort(std::string_view basic, std::string_view digits, std::string& output) {
  std::array<std::uint32_t, shortLabel> label;
  std::size_t length = basic.size();
  std::size_t size = basic.size();
  std::copy(basic.begin(), basic.end(), label.begin());
  const auto insert = [&](std::uint32_t codePoint, std::uint32_t index) {
    std::copy_backward(label.data() + index, label.data() + length, label.data() + length + 1);
    label[index] = codePoint;
    ++length;
    size += U8_LENGTH(codePoint);
  };
  if (!readDigits(digits, length, insert)) return false;
  appendUTF8({label.data(), length}, size, output);
  return true;
}

// Finds all places before it puts a code point there: labels have no limit in length.
bool appendDecodedLong(std::string_view basic, std::string_view digits, std::string& output) {
  std::vector<Insertion> insertions;
  std::size_t size = basic.size();
  const auto insert = [&](std::uint32_t codePoint, std::uint32_t index) {
    insertions.push_back({codePoint, index});
    size += U8_LENGTH(codePoint);
  };
  if (!readDigits(digits, basic.size(), insert)) return false;

  Insertion::sortByPlace(insertions);
  std::vector<std::uint32_t> label(basic.size() + insertions.size());
  std::uint32_t place = 0;
  for (const Insertion& insertion : insertions) {
    const std::size_t count = insertion.index - place;
    std::copy_n(basic.begin(), count, label.begin() + place);
    basic.remove_prefix(count);
    label[insertion.index] = insertion.codePoint;
    place = insertion.index + 1;
  }
  std::copy(basic.begin(), basic.end(), label.begin() + place);
  appendUTF8(label, size, output);
  return true;
}

}  // namespace

bool ZCNPunycode::appendEncoded(std::string_view label, std::string& output) {
  const std::size_t oldSize = output.size();
  const std::uint8_t* const bytes = foundation::dataOf(label).data();
  Insertions insertions(label.size());
  std::uint64_t length = 0;
  for (std::size_t i = 0; i < label.size(); ++length) {
    UChar32 codePoint;
    U8_NEXT_OR_FFFD(bytes, i, label.size(), codePoint);
    if (codePoint < static_cast<UChar32>(initialN)) {
      output += static_cast<char>(codePoint);
    } else {
      insertions.add(static_cast<std::uint32_t>(codePoint), length);
    }
  }
  const std::size_t basicCount = output.size() - oldSize;
  if (basicCount > 0) output += delimiter;

  Insertion::sortByCodePoint(insertions.row());
  if (length <= largest &&
      appendDigits(insertions.row(), static_cast<std::uint32_t>(basicCount), output)) {
    return true;
  }
  output.resize(oldSize);
  return false;
}

bool ZCNPunycode::appendDecoded(std::string_view text, std::string& output) {
  // A delimiter in front of everything is none.
  const std::size_t end = text.rfind(delimiter);
  const std::string_view basic = text.substr(0, end == text.npos ? 0 : end);
  const std::string_view digits = text.substr(basic.empty() ? 0 : end + 1);
  if (!foundation::isASCII(basic)) return false;
  if (text.size() <= shortLabel) return appendDecodedShort(basic, digits, output);
  return appendDecodedLong(basic, digits, output);
}
