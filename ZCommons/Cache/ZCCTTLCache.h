#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "ZCommons/Cache/ZCCCache.h"
#include "foundation/Date.h"
#include "platform/Clock.h"
#include "platform/Queue.h"
#include "platform/Timer.h"

/// A `ZCCCache` whose keys also go when they have not been written or read for a time.
///
/// A timer looks for such keys once in each time to live, on a queue of the cache's own, so a key
/// goes up to about one interval late. The timer runs from an insertion into a cache that remembers
/// no use of any key until none is remembered again. A read counts as a use of a key that is not
/// there too: made while the timer is off, it keeps the next insertion from starting it, and
/// nothing goes by time until the cache has been emptied. A key that was evicted is remembered
/// until its time has come.
///
/// Thread safety: as `ZCCCache`. The clock in force when the timer starts drives it.
template <class Key, class Value, class Hash = std::hash<Key>, class Equal = std::equal_to<Key>>
class ZCCTTLCache final
    : public ZCCCache<Key, Value, Hash, Equal>,
      public std::enable_shared_from_this<ZCCTTLCache<Key, Value, Hash, Equal>> {
  using Base = ZCCCache<Key, Value, Hash, Equal>;
  using typename Base::Discarded;
  using typename Base::Item;
  using typename Base::Items;

 public:
  static constexpr foundation::TimeInterval defaultTtlInterval = 7200;
  static constexpr foundation::TimeInterval shortestTtlInterval = 60;

  /// initWithCapacity:ttlInterval:
  ///
  /// `ttlInterval` is the time to live in seconds; less than 60 is 60.
  static std::shared_ptr<ZCCTTLCache> initWithCapacity(
      std::size_t capacity = Base::defaultCapacity,
      foundation::TimeInterval ttlInterval = defaultTtlInterval) {
    return std::shared_ptr<ZCCTTLCache>(new ZCCTTLCache(capacity, ttlInterval));
  }

  /// The time to live, in seconds.
  foundation::TimeInterval ttlInterval() const { return ttlInterval_; }

  /// The queue on which keys go whose time has come: who waits for it has seen the purges that were
  /// due.
  const platform::QueueRef& workQueue() const { return workQueue_; }

 private:
  ZCCTTLCache(std::size_t capacity, foundation::TimeInterval ttlInterval)
      : Base(capacity), ttlInterval_(std::max(shortestTtlInterval, ttlInterval)) {}

  void _addValue(Value value, const Key& key, Discarded& discarded) override
      ZARVO_REQUIRES(this->lock_) {
    if (dates_ == 0) enablePurgeTimer();
    setDate(this->store(std::move(value), key, discarded));
  }

  std::optional<Value> _getValue(const Key& key) override ZARVO_REQUIRES(this->lock_) {
    Item& item = this->touch(key);
    setDate(item);
    return item.value;
  }

  void _removeByKey(const Key& key, Discarded& discarded) override ZARVO_REQUIRES(this->lock_) {
    removeItem(this->items_.find(key, Items::hashOf(key)), discarded);
    disablePurgeTimerIfIdle();
  }

  void _removeByKeys(std::span<const Key> keys, Discarded& discarded) override
      ZARVO_REQUIRES(this->lock_) {
    for (const Key& key : keys) {
      removeItem(this->items_.find(key, Items::hashOf(key)), discarded);
    }
    disablePurgeTimerIfIdle();
  }

  void _clear(Discarded& discarded) override ZARVO_REQUIRES(this->lock_) {
    this->items_.clear(discarded);
    dates_ = 0;
    disablePurgeTimerIfIdle();
  }

  void setDate(Item& item) ZARVO_REQUIRES(this->lock_) {
    if (item.used == Items::never) ++dates_;
    item.used = platform::Clock::current().now();
  }

  void removeItem(Item* item, Discarded& discarded) ZARVO_REQUIRES(this->lock_) {
    if (!item) return;
    if (item->used != Items::never) --dates_;
    this->items_.forget(*item, discarded);
  }

  void enablePurgeTimer() ZARVO_REQUIRES(this->lock_) {
    purgeTimer_ = platform::Timer::timer(workQueue_, [weak = this->weak_from_this()] {
      if (const auto cache = weak.lock()) cache->purge();
    });
    purgeTimer_->startAfter(0, ttlInterval_, ttlInterval_ - 1);
  }

  void disablePurgeTimerIfIdle() ZARVO_REQUIRES(this->lock_) {
    if (dates_ == 0) purgeTimer_ = nullptr;
  }

  void purge() {
    Discarded discarded;
    foundation::SpinLockGuard lock(this->lock_);
    purgeOld(discarded);
  }

  void purgeOld(Discarded& discarded) ZARVO_REQUIRES(this->lock_) {
    const foundation::Date now = platform::Clock::current().now();
    std::vector<Item*> old;
    this->items_.forEach([&](Item& item) {
      if (item.used != Items::never && foundation::secondsBetween(item.used, now) >= ttlInterval_) {
        old.push_back(&item);
      }
    });
    for (Item* const item : old) removeItem(item, discarded);
    disablePurgeTimerIfIdle();
  }

  const foundation::TimeInterval ttlInterval_;
  const platform::QueueRef workQueue_ = platform::Queue::serialQueue("ZCCTTLCacheCleaner");
  std::size_t dates_ ZARVO_GUARDED_BY(this->lock_) = 0;          // how many items have one
  platform::TimerRef purgeTimer_ ZARVO_GUARDED_BY(this->lock_);  // null while no item has a date
};
