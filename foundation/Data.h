#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace foundation {

/// An allocator whose default construction leaves bytes as they are, so that a buffer that a read
/// fills next is not cleared first.
template <class T>
struct UninitializedAllocator : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = UninitializedAllocator<U>;
  };
  template <class U>
  void construct(U* place) noexcept {
    ::new (static_cast<void*>(place)) U;
  }
  template <class U, class Argument>
  void construct(U* place, Argument&& argument) {
    ::new (static_cast<void*>(place)) U(static_cast<U>(argument));
  }
};

/// Owned bytes. `Data(n)` and `resize(n)` leave new bytes undefined; give a value to have them set.
using Data = std::vector<std::uint8_t, UninitializedAllocator<std::uint8_t>>;

/// Bytes of someone else, read only.
using DataView = std::span<const std::uint8_t>;

/// Adds `bytes`, which are not bytes of `data`, at the end. Copies them as a block, which a vector
/// with this allocator does not do by itself.
inline void append(Data& data, DataView bytes) {
  if (bytes.empty()) return;
  const std::size_t length = data.size();
  data.resize(length + bytes.size());
  std::memcpy(data.data() + length, bytes.data(), bytes.size());
}

/// The bytes of a text, without a copy.
inline DataView dataOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// Bytes looked at as text, without a copy and without a check of their encoding.
inline std::string_view textOf(DataView data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

}  // namespace foundation
