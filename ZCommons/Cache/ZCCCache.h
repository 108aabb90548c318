#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ZCommons/Cache/ZCCItems.h"
#include "foundation/SpinLock.h"

/// A cache in memory that holds a number of items, and evicts the least recently used one for a new
/// key.
///
/// Every operation takes constant time, but for `keys`, `cache` and `clear`. Values that leave the
/// cache are destroyed after its lock has been released; keys are hashed and compared, and values
/// copied, under it.
///
/// Thread safety: any thread, every member. `containsKey` and `maxItems` never wait for another
/// operation to end.
///
///     ZCCCache<std::string, Page> pages(100);
///     pages.addValue(page, "index");
///     if (const auto cached = pages["index"]) show(*cached);
template <class Key, class Value, class Hash = std::hash<Key>, class Equal = std::equal_to<Key>>
class ZCCCache {
 public:
  using Dictionary = std::unordered_map<Key, Value, Hash, Equal>;

  static constexpr std::size_t defaultCapacity = 30;

  /// initWithCapacity:
  ///
  /// `capacity` is `maxItems` at first, and a hint for the room to make.
  explicit ZCCCache(std::size_t capacity = defaultCapacity)
      : items_(capacity), maxItems_(capacity) {}

  virtual ~ZCCCache() = default;
  ZCCCache(const ZCCCache&) = delete;
  ZCCCache& operator=(const ZCCCache&) = delete;

  /// How many keys the cache holds before a new one evicts one. A lower number evicts nothing by
  /// itself: the cache shrinks no more, since every new key evicts just one.
  std::size_t maxItems() const { return maxItems_.load(std::memory_order_relaxed); }
  void setMaxItems(std::size_t maxItems) { maxItems_.store(maxItems, std::memory_order_relaxed); }

  /// addValue:forKey:
  ///
  /// Stores the value in place of an older one, as the most recently used. A new key evicts the
  /// least recently used one when the cache is full.
  void addValue(Value value, const Key& key) {
    Discarded discarded;
    foundation::SpinLockGuard lock(lock_);
    _addValue(std::move(value), key, discarded);
  }

  /// The value under `key`, which counts as a use of it. A key that is not there gets a place in
  /// the recency queue all the same, without a value: `containsKey` says yes from then on, and it
  /// counts against the capacity until it is evicted or removed.
  std::optional<Value> objectForKeyedSubscript(const Key& key) {
    foundation::SpinLockGuard lock(lock_);
    return _getValue(key);
  }
  std::optional<Value> operator[](const Key& key) { return objectForKeyedSubscript(key); }

  /// Whether the key has a place in the recency queue.
  bool containsKey(const Key& key) const ZARVO_NO_THREAD_SAFETY_ANALYSIS {
    return items_.isQueued(key);
  }

  /// Removes the key and its value; nothing happens when it has no place in the queue.
  void removeByKey(const Key& key) {
    Discarded discarded;
    foundation::SpinLockGuard lock(lock_);
    _removeByKey(key, discarded);
  }

  /// As `removeByKey` for each of them, at one go.
  void removeByKeys(std::span<const Key> keys) {
    Discarded discarded;
    foundation::SpinLockGuard lock(lock_);
    _removeByKeys(keys, discarded);
  }

  /// Removes everything.
  void clear() {
    Discarded discarded;
    foundation::SpinLockGuard lock(lock_);
    _clear(discarded);
  }

  /// A copy of the recency queue, least recently used first.
  std::vector<Key> keys() const {
    std::vector<Key> keys;
    foundation::SpinLockGuard lock(lock_);
    keys.reserve(items_.queued());
    for (const Item* item = items_.oldest(); item; item = item->newer) keys.push_back(item->key);
    return keys;
  }

  /// A copy of the values by their keys.
  Dictionary cache() const {
    Dictionary dictionary;
    foundation::SpinLockGuard lock(lock_);
    for (const Item* item = items_.oldest(); item; item = item->newer) {
      if (item->value) dictionary.emplace(item->key, *item->value);
    }
    return dictionary;
  }

 protected:
  using Items = ZCCItems<Key, Value, Hash, Equal>;
  using Item = typename Items::Item;
  using Discarded = typename Items::Discarded;

  virtual void _addValue(Value value, const Key& key, Discarded& discarded) ZARVO_REQUIRES(lock_) {
    store(std::move(value), key, discarded);
  }

  virtual std::optional<Value> _getValue(const Key& key) ZARVO_REQUIRES(lock_) {
    return touch(key).value;
  }

  virtual void _removeByKey(const Key& key, Discarded& discarded) ZARVO_REQUIRES(lock_) {
    Item* const item = items_.find(key, Items::hashOf(key));
    if (item && item->queued) items_.dequeue(*item, discarded);
  }

  virtual void _removeByKeys(std::span<const Key> keys, Discarded& discarded)
      ZARVO_REQUIRES(lock_) {
    for (const Key& key : keys) ZCCCache::_removeByKey(key, discarded);
  }

  virtual void _clear(Discarded& discarded) ZARVO_REQUIRES(lock_) { items_.clear(discarded); }

  Item& store(Value value, const Key& key, Discarded& discarded) ZARVO_REQUIRES(lock_) {
    Item& item = items_.findOrInsert(key);
    if (!item.queued && items_.queued() >= maxItems()) purgeSpace(discarded);
    items_.enqueue(item);
    discarded.replaced = std::exchange(item.value, std::move(value));
    return item;
  }

  /// Makes the key the most recently used one.
  Item& touch(const Key& key) ZARVO_REQUIRES(lock_) {
    Item& item = items_.findOrInsert(key);
    items_.enqueue(item);
    return item;
  }

  /// Evicts the least recently used key.
  void purgeSpace(Discarded& discarded) ZARVO_REQUIRES(lock_) {
    if (Item* const item = items_.oldest()) items_.dequeue(*item, discarded);
  }

  mutable foundation::SpinLock lock_;
  Items items_ ZARVO_GUARDED_BY(lock_);

 private:
  std::atomic<std::size_t> maxItems_;
};
