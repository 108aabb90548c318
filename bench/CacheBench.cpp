// The caches beside a list and a hash map under a mutex, and a Boost.MultiIndex container under
// one.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <unordered_map>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#ifdef ZARVO_HAVE_BOOST
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>
#endif

#include "ZCommons/Cache/ZCCCache.h"
#include "ZCommons/Cache/ZCCTTLCache.h"

namespace {

/// What the standard library gives; `Stamp` is what a use of a key notes.
template <class Stamp>
class ListAndMap {
 public:
  explicit ListAndMap(std::size_t capacity) : capacity_(capacity) { places_.reserve(capacity); }

  std::optional<int> get(int key) {
    const std::lock_guard lock(mutex_);
    const auto found = places_.find(key);
    if (found == places_.end()) return std::nullopt;
    items_.splice(items_.end(), items_, found->second);
    found->second->stamp = Stamp();
    return found->second->value;
  }

  void put(int key, int value) {
    const std::lock_guard lock(mutex_);
    const auto found = places_.find(key);
    if (found != places_.end()) {
      items_.splice(items_.end(), items_, found->second);
      found->second->value = value;
      found->second->stamp = Stamp();
      return;
    }
    if (items_.size() >= capacity_) {
      places_.erase(items_.front().key);
      items_.pop_front();
    }
    items_.push_back({key, value, Stamp()});
    places_.emplace(key, std::prev(items_.end()));
  }

 private:
  struct Item {
    int key;
    int value;
    Stamp stamp;
  };
  std::mutex mutex_;
  const std::size_t capacity_;
  std::list<Item> items_;
  std::unordered_map<int, typename std::list<Item>::iterator> places_;
};

struct NoStamp {};
struct TimeStamp {
  std::chrono::system_clock::time_point time = std::chrono::system_clock::now();
};
using StandardCache = ListAndMap<NoStamp>;
using StandardTTLCache = ListAndMap<TimeStamp>;

#ifdef ZARVO_HAVE_BOOST
class MultiIndexCache {
 public:
  explicit MultiIndexCache(std::size_t capacity) : capacity_(capacity) {
    items_.get<1>().reserve(capacity);
  }

  std::optional<int> get(int key) {
    const std::lock_guard lock(mutex_);
    const auto found = items_.get<1>().find(key);
    if (found == items_.get<1>().end()) return std::nullopt;
    items_.relocate(items_.end(), items_.project<0>(found));
    return found->value;
  }

  void put(int key, int value) {
    const std::lock_guard lock(mutex_);
    const auto found = items_.get<1>().find(key);
    if (found != items_.get<1>().end()) {
      items_.relocate(items_.end(), items_.project<0>(found));
      items_.get<1>().modify(found, [value](Item& item) { item.value = value; });
      return;
    }
    if (items_.size() >= capacity_) items_.pop_front();
    items_.push_back({key, value});
  }

 private:
  struct Item {
    int key;
    int value;
  };
  std::mutex mutex_;
  const std::size_t capacity_;
  boost::multi_index_container<
      Item, boost::multi_index::indexed_by<boost::multi_index::sequenced<>,
                                           boost::multi_index::hashed_unique<
                                               boost::multi_index::member<Item, int, &Item::key>>>>
      items_;
};
#endif

class OurCache {
 public:
  explicit OurCache(std::size_t capacity) : cache_(capacity) {}
  std::optional<int> get(int key) { return cache_[key]; }
  void put(int key, int value) { cache_.addValue(value, key); }

 private:
  ZCCCache<int, int> cache_;
};

class OurTTLCache {
 public:
  explicit OurTTLCache(std::size_t capacity)
      : cache_(ZCCTTLCache<int, int>::initWithCapacity(capacity)) {}
  std::optional<int> get(int key) { return (*cache_)[key]; }
  void put(int key, int value) { cache_->addValue(value, key); }

 private:
  std::shared_ptr<ZCCTTLCache<int, int>> cache_;
};

std::vector<int> shuffledKeys(std::size_t count) {
  std::vector<int> keys(count);
  for (std::size_t i = 0; i < count; ++i) keys[i] = static_cast<int>(i);
  std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
  return keys;
}

template <class Cache>
Cache& filled(const std::vector<int>& keys) {
  Cache& cache = *new Cache(keys.size());
  for (const int key : keys) cache.put(key, key);
  return cache;
}

// Every key is there.
template <class Cache>
void hits(benchmark::State& state) {
  static const auto keys = new std::vector<int>;
  static Cache* cache;
  if (state.thread_index() == 0) {
    *keys = shuffledKeys(static_cast<std::size_t>(state.range(0)));
    cache = &filled<Cache>(*keys);
  }
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(cache->get((*keys)[i]));
    if (++i == keys->size()) i = 0;
  }
  if (state.thread_index() == 0) delete cache;
}

// No key that is asked for has a value.
template <class Cache>
void misses(benchmark::State& state) {
  static const auto keys = new std::vector<int>;
  static Cache* cache;
  if (state.thread_index() == 0) {
    *keys = shuffledKeys(static_cast<std::size_t>(state.range(0)));
    cache = &filled<Cache>(*keys);
  }
  const int absent = static_cast<int>(state.range(0));
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(cache->get((*keys)[i] + absent));
    if (++i == keys->size()) i = 0;
  }
  if (state.thread_index() == 0) delete cache;
}

// Every key is new, so that another one goes: four times as many as fit.
template <class Cache>
void evictions(benchmark::State& state) {
  static const auto keys = new std::vector<int>;
  static Cache* cache;
  if (state.thread_index() == 0) {
    *keys = shuffledKeys(static_cast<std::size_t>(state.range(0)) * 4);
    cache = new Cache(static_cast<std::size_t>(state.range(0)));
  }
  std::size_t i = 0;
  for (auto _ : state) {
    cache->put((*keys)[i], 1);
    if (++i == keys->size()) i = 0;
  }
  if (state.thread_index() == 0) delete cache;
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(30)->Arg(1000)->Arg(100000)->Threads(1)->Threads(2)->UseRealTime();
}

BENCHMARK(hits<OurCache>)->Apply(sizes);
BENCHMARK(hits<StandardCache>)->Apply(sizes);
#ifdef ZARVO_HAVE_BOOST
BENCHMARK(hits<MultiIndexCache>)->Apply(sizes);
#endif
BENCHMARK(misses<OurCache>)->Apply(sizes);
BENCHMARK(misses<StandardCache>)->Apply(sizes);
#ifdef ZARVO_HAVE_BOOST
BENCHMARK(misses<MultiIndexCache>)->Apply(sizes);
#endif
BENCHMARK(evictions<OurCache>)->Apply(sizes);
BENCHMARK(evictions<StandardCache>)->Apply(sizes);
#ifdef ZARVO_HAVE_BOOST
BENCHMARK(evictions<MultiIndexCache>)->Apply(sizes);
#endif
BENCHMARK(hits<OurTTLCache>)->Apply(sizes);
BENCHMARK(hits<StandardTTLCache>)->Apply(sizes);

}  // namespace
