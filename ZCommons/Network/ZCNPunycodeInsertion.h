#pragma once

#include <cstdint>
#include <span>

/// One step of building a label from its basic code points, as Punycode (RFC 3492) does it: a code
/// point is put in front of the one that has `index` at that time.
///
/// Punycode has the steps in ascending order of code points, those of one code point in ascending
/// order of places. Both sorts take O(n log n) and change indices where steps pass one another.
struct ZCNPunycodeInsertion {
  std::uint32_t codePoint;
  std::uint32_t index;

  /// Puts the row into the order of steps. It comes in the order of places, with each step's place
  /// in the finished label as its index, and leaves with the indices of the steps.
  static void sortByCodePoint(std::span<ZCNPunycodeInsertion> row);

  /// Puts the row into the order of places: the reverse of `sortByCodePoint`.
  static void sortByPlace(std::span<ZCNPunycodeInsertion> row);
};
