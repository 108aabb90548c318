#include <atomic>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ZCommons/Cache/ZCCCache.h"
#include "tests/ZCommons/Cache/CacheModel.h"

namespace {

/// Hashes that collide, and are badly spread.
struct PoorHash {
  std::size_t operator()(int key) const { return static_cast<std::size_t>(key % 13) << 40; }
};

template <class Cache>
void compareWithModel(int operations, unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&](unsigned bound) { return static_cast<int>(random() % bound); };
  Cache cache(8);
  CacheModel model;
  model.maxItems = 8;
  for (int i = 0; i < operations; ++i) {
    const int key = below(40);
    switch (below(100)) {
      case 0:
        cache.clear();
        model.clear();
        break;
      case 1:
        model.maxItems = static_cast<std::size_t>(below(20));
        cache.setMaxItems(model.maxItems);
        break;
      case 2:
        cache.removeByKeys(std::vector<int>{key, key + 1});
        model.remove(key);
        model.remove(key + 1);
        break;
      default:
        switch (below(5)) {
          case 0:
            cache.removeByKey(key);
            model.remove(key);
            break;
          case 1:
            ASSERT_EQ(cache[key], model.read(key, 0));
            break;
          default:
            cache.addValue(i, key);
            model.add(key, i, 0);
        }
    }
    ASSERT_EQ(cache.containsKey(key), std::count(model.queue.begin(), model.queue.end(), key) == 1);
    if (i % 97 != 0) continue;
    ASSERT_EQ(cache.keys(), model.queue);
    const auto values = cache.cache();
    ASSERT_EQ((std::map<int, int>(values.begin(), values.end())), model.values);
  }
}

}  // namespace

TEST(ZCCCache, DoesWhatThePlainModelDoes) {
  compareWithModel<ZCCCache<int, int>>(400000, 1);
  compareWithModel<ZCCCache<int, int, PoorHash>>(100000, 2);
}

TEST(ZCCCache, AReadOfAMissingKeyClaimsAPlace) {
  ZCCCache<std::string, int> cache(2);
  EXPECT_EQ(cache["x"], std::nullopt);
  EXPECT_TRUE(cache.containsKey("x"));
  cache.addValue(1, "a");
  cache.addValue(2, "b");
  EXPECT_EQ(cache.keys(), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ((ZCCCache<int, int>().maxItems()), 30U);
}

TEST(ZCCCache, DestroysWhatLeavesItOutsideItsLock) {
  using Cache = ZCCCache<int, std::shared_ptr<void>>;
  Cache cache(1);
  int destroyed = 0;
  const auto value = [&] {
    return std::shared_ptr<void>(nullptr, [&](void*) {
      ++destroyed;
      cache.keys();  // would wait for itself
    });
  };
  cache.addValue(value(), 1);
  cache.addValue(value(), 1);  // replaces
  cache.addValue(value(), 2);  // evicts
  EXPECT_EQ(destroyed, 2);
  cache.removeByKey(2);
  cache.addValue(value(), 3);
  cache.clear();
  EXPECT_EQ(destroyed, 4);
}

TEST(ZCCCache, ServesSeveralThreads) {
  ZCCCache<int, std::string> cache(50);
  std::atomic<bool> done{false};
  std::thread looker([&] {
    for (int i = 0; !done; ++i) cache.containsKey(i % 100);
  });
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 5000; ++i) {
        const int key = (i * 7 + t) % 100;
        EXPECT_EQ(cache[key].value_or(std::to_string(key)), std::to_string(key));
        cache.addValue(std::to_string(key), key);
        if (i % 50 == 0) cache.removeByKey(key);
        if (i % 1000 == 0) cache.clear();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  done = true;
  looker.join();
  EXPECT_LE(cache.cache().size(), cache.keys().size());
}
