#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZCommons/Cache/ZCCTTLCache.h"
#include "platform/SimulatedClock.h"
#include "tests/ZCommons/Cache/CacheModel.h"

namespace {

class ZCCTTLCacheTest : public testing::Test {
 protected:
  using Cache = ZCCTTLCache<int, int>;
  using Keys = std::vector<int>;

  // Lets `seconds` pass, and what is due happen.
  void wait(int seconds) {
    clock.advance(seconds);
    cache->workQueue()->sync([] {});
  }

  platform::SimulatedClock clock{foundation::Date()};
  platform::Clock::Replacement replacement{clock};
  std::shared_ptr<Cache> cache = Cache::initWithCapacity(8, 10);
};

}  // namespace

TEST_F(ZCCTTLCacheTest, ForgetsWhatIsNotUsedForItsTime) {
  EXPECT_EQ(cache->ttlInterval(), 60);
  EXPECT_EQ(Cache::initWithCapacity()->ttlInterval(), 7200);
  EXPECT_EQ(Cache::initWithCapacity()->maxItems(), 30U);
  cache->addValue(1, 1);
  cache->addValue(2, 2);
  wait(30);
  EXPECT_EQ((*cache)[2], 2);
  wait(30);
  EXPECT_EQ(cache->keys(), Keys{2});
  wait(30);
  EXPECT_EQ((*cache)[2], 2);
  wait(30);
  EXPECT_EQ(cache->keys(), Keys{2});
  wait(60);
  EXPECT_EQ(cache->keys(), Keys{});
  cache->addValue(3, 3);  // starts the timer again
  wait(60);
  EXPECT_FALSE(cache->containsKey(3));
}

TEST_F(ZCCTTLCacheTest, AReadOfAMissingKeyKeepsTheTimerFromStarting) {
  EXPECT_EQ((*cache)[1], std::nullopt);
  cache->addValue(2, 2);
  wait(600);
  EXPECT_EQ(cache->keys(), (Keys{1, 2}));
  cache->clear();
  cache->addValue(2, 2);
  wait(60);
  EXPECT_EQ(cache->keys(), Keys{});
}

TEST_F(ZCCTTLCacheTest, MayGoWhileItsTimerRuns) {
  cache->addValue(1, 1);
  const auto queue = cache->workQueue();
  cache = nullptr;
  clock.advance(600);
  queue->sync([] {});
}

TEST_F(ZCCTTLCacheTest, DoesWhatThePlainModelDoes) {
  std::mt19937 random(3);
  const auto below = [&](unsigned bound) { return static_cast<int>(random() % bound); };
  CacheModel model;
  model.maxItems = 8;
  int now = 0;
  for (int i = 0; i < 500000; ++i) {
    const int key = below(20);
    switch (below(40)) {
      case 0:
        for (int seconds = below(8); seconds > 0; --seconds) {
          wait(1);
          ++now;
          if (model.timerStart && (now - static_cast<int>(*model.timerStart)) % 60 == 0) {
            model.purge(now, 60);
          }
        }
        break;
      case 1:
        cache->removeByKeys(Keys{key, key + 1});
        model.remove(key);
        model.remove(key + 1);
        break;
      case 2:
        if (key == 0) cache->clear(), model.clear();
        break;
      case 3:
      case 4:
        ASSERT_EQ((*cache)[key], model.read(key, now));
        break;
      case 5:
      case 6:
        cache->addValue(i, key);
        model.add(key, i, now);
        break;
      default:
        cache->removeByKey(key);
        model.remove(key);
    }
    ASSERT_EQ(cache->keys(), model.queue) << i;
  }
}
