#include "ZCommons/Network/ZCNPunycodeInsertion.h"

#include <cstddef>
#include <vector>

namespace {

using Insertion = ZCNPunycodeInsertion;

// An insertion does not count the greater code points that stand before it, since they are inserted
// later.
struct ByCodePoint {
  static bool goesFirst(Insertion right, Insertion left, std::uint32_t /*passed*/) {
    return right.codePoint < left.codePoint;
  }
  static void passLefts(Insertion& right, std::uint32_t count) { right.index -= count; }
  static void passRights(Insertion& /*left*/, std::uint32_t /*count*/) {}
};

// An insertion moves everything that stands behind it.
struct ByPlace {
  static bool goesFirst(Insertion right, Insertion left, std::uint32_t passed) {
    return right.index <= left.index + passed;
  }
  static void passLefts(Insertion& /*right*/, std::uint32_t /*count*/) {}
  static void passRights(Insertion& left, std::uint32_t count) { left.index += count; }
};

template <class Order>
void sortByInsertion(std::span<Insertion> row) {
  for (std::size_t next = 1; next < row.size(); ++next) {
    Insertion right = row[next];
    std::size_t place = next;
    for (; place > 0 && Order::goesFirst(right, row[place - 1], 0); --place) {
      Order::passLefts(right, 1);
      row[place] = row[place - 1];
      Order::passRights(row[place], 1);
    }
    row[place] = right;
  }
}

// Merges sorted rows into one that begins at `output` and ends where `right` does.
template <class Order>
void merge(std::span<const Insertion> left, std::span<const Insertion> right, Insertion* output) {
  std::uint32_t passed = 0;
  for (std::size_t i = 0; i < left.size(); ++i) {
    for (; passed < right.size() && Order::goesFirst(right[passed], left[i], passed); ++passed) {
      *output = right[passed];
      Order::passLefts(*output++, static_cast<std::uint32_t>(left.size() - i));
    }
    *output = left[i];
    Order::passRights(*output++, passed);
  }
}

// Keeps the order of equals. Labels have no limit in length, so long rows are sorted by merging.
template <class Order>
void sort(std::span<Insertion> row) {
  constexpr std::size_t shortRow = 40;
  if (row.size() <= shortRow) return sortByInsertion<Order>(row);
  const std::span<Insertion> left = row.first(row.size() / 2);
  const std::span<Insertion> right = row.subspan(left.size());
  sort<Order>(left);
  sort<Order>(right);
  merge<Order>(std::vector<Insertion>(left.begin(), left.end()), right, row.data());
}

}  // namespace

void ZCNPunycodeInsertion::sortByCodePoint(std::span<ZCNPunycodeInsertion> row) {
  sort<ByCodePoint>(row);
}

void ZCNPunycodeInsertion::sortByPlace(std::span<ZCNPunycodeInsertion> row) { sort<ByPlace>(row); }
