#include "bench/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> count{0};
}  // namespace

long allocationCount() { return count.load(); }

void* operator new(std::size_t size) {
  count.fetch_add(1, std::memory_order_relaxed);
  if (void* const place = std::malloc(size)) return place;
  throw std::bad_alloc();
}

void operator delete(void* place) noexcept { std::free(place); }

void operator delete(void* place, std::size_t) noexcept { std::free(place); }
