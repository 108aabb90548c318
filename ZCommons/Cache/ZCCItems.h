#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/Date.h"
#include "foundation/SpinLock.h"

/// What the caches keep: items by key, and the order of their use.
///
/// An item lives as long as its key is in the recency queue or has a date. Items are found through
/// a table of slots (open addressing, linear probing, at most four fifths full). Everything is done
/// under the lock of the cache, except `isQueued`: what that looks at changes only under a lock of
/// its own, which is never held for longer than a look at one key or the exchange of a table.
template <class Key, class Value, class Hash, class Equal>
class ZCCItems {
 public:
  static constexpr foundation::Date never = foundation::Date::min();

  struct Item {
    explicit Item(const Key& itsKey) : key(itsKey) {}

    Item* older = nullptr;
    Item* newer = nullptr;
    foundation::Date used = never;  // the last write or read, where that matters
    const Key key;
    std::optional<Value> value;  // none when the key was only asked for
    bool queued = false;
  };

  /// What is destroyed once the lock of the cache has been released: declare it before the guard.
  class Discarded {
   public:
    Discarded() = default;
    ~Discarded() {
      while (first_) delete std::exchange(first_, first_->newer);
    }
    Discarded(const Discarded&) = delete;
    Discarded& operator=(const Discarded&) = delete;

    void add(Item& item) {
      item.newer = first_;
      first_ = &item;
    }

    std::optional<Value> evicted;
    std::optional<Value> replaced;

   private:
    Item* first_ = nullptr;  // linked by `newer`
  };

  explicit ZCCItems(std::size_t capacity) : slots_(tableSize(capacity)) {}
  ~ZCCItems() {
    forEach([](Item& item) { delete &item; });
  }
  ZCCItems(const ZCCItems&) = delete;
  ZCCItems& operator=(const ZCCItems&) = delete;

  static std::size_t hashOf(const Key& key) {
    return static_cast<std::size_t>(Hash()(key) * UINT64_C(0x9E3779B97F4A7C15));
  }

  /// Whether the key is in the recency queue; needs no lock of the cache, and never waits for it.
  bool isQueued(const Key& key) const {
    const std::size_t hash = hashOf(key);
    foundation::SpinLockGuard lock(look_);
    const Item* const item = find(key, hash);
    return item && item->queued;
  }

  /// The item of the key; null when there is none.
  Item* find(const Key& key, std::size_t hash) const {
    for (std::size_t i = start(slots_, hash); slots_[i].item; i = next(slots_, i)) {
      if (slots_[i].hash == hash && Equal()(slots_[i].item->key, key)) return slots_[i].item;
    }
    return nullptr;
  }

  /// The item of the key, made if there is none.
  Item& findOrInsert(const Key& key) {
    const std::size_t hash = hashOf(key);
    if (Item* const item = find(key, hash)) return *item;
    auto item = std::make_unique<Item>(key);
    if (isTooMany(count_ + 1, slots_.size())) grow();
    foundation::SpinLockGuard lock(look_);
    place(slots_, {hash, item.get()});
    ++count_;
    return *item.release();
  }

  /// Puts the item at the end of the queue, wherever it was before.
  void enqueue(Item& item) {
    if (&item == newest_) return;
    if (item.queued) {
      unlink(item);
    } else {
      setQueued(item, true);
      ++queued_;
    }
    item.older = newest_;
    item.newer = nullptr;
    (newest_ ? newest_->newer : oldest_) = &item;
    newest_ = &item;
  }

  /// Takes the item, which is in the queue, out of it, and its value away.
  void dequeue(Item& item, Discarded& discarded) {
    unlink(item);
    --queued_;
    if (item.used == never) return remove(item, discarded);
    setQueued(item, false);
    discarded.evicted = std::exchange(item.value, std::nullopt);
  }

  /// Forgets the item altogether.
  void forget(Item& item, Discarded& discarded) {
    item.used = never;
    item.queued ? dequeue(item, discarded) : remove(item, discarded);
  }

  /// Forgets everything.
  void clear(Discarded& discarded) {
    std::vector<Slot> empty(tableSize(0));
    forEach([&](Item& item) { discarded.add(item); });
    foundation::SpinLockGuard lock(look_);
    slots_.swap(empty);
    count_ = queued_ = 0;
    oldest_ = newest_ = nullptr;
  }

  Item* oldest() const { return oldest_; }
  std::size_t queued() const { return queued_; }

  /// Calls `visit` with every item, in no order.
  template <class Visit>
  void forEach(Visit visit) const {
    for (const Slot& slot : slots_) {
      if (slot.item) visit(*slot.item);
    }
  }

 private:
  struct Slot {
    std::size_t hash = 0;
    Item* item = nullptr;
  };
  using Slots = std::vector<Slot>;

  static bool isTooMany(std::size_t items, std::size_t slots) { return items * 5 > slots * 4; }

  static std::size_t tableSize(std::size_t items) {
    constexpr std::size_t largestHint = 1 << 16;
    std::size_t size = 16;
    while (isTooMany(items, size) && size < largestHint) size *= 2;
    return size;
  }

  // The upper half of a hash is the better mixed one.
  static std::size_t start(const Slots& slots, std::size_t hash) {
    return (hash ^ (hash >> 32)) & (slots.size() - 1);
  }
  static std::size_t next(const Slots& slots, std::size_t i) {
    return (i + 1) & (slots.size() - 1);
  }

  static void place(Slots& slots, Slot slot) {
    std::size_t i = start(slots, slot.hash);
    while (slots[i].item) i = next(slots, i);
    slots[i] = slot;
  }

  void grow() {
    Slots larger(slots_.size() * 2);
    for (const Slot& slot : slots_) {
      if (slot.item) place(larger, slot);
    }
    foundation::SpinLockGuard lock(look_);
    slots_.swap(larger);
  }

  void setQueued(Item& item, bool queued) {
    foundation::SpinLockGuard lock(look_);
    item.queued = queued;
  }

  void unlink(Item& item) {
    (item.older ? item.older->newer : oldest_) = item.newer;
    (item.newer ? item.newer->older : newest_) = item.older;
  }

  void remove(Item& item, Discarded& discarded) {
    std::size_t hole = start(slots_, hashOf(item.key));
    while (slots_[hole].item != &item) hole = next(slots_, hole);
    foundation::SpinLockGuard lock(look_);
    close(hole);
    --count_;
    discarded.add(item);
  }

  // Moves back what could not stand where the hole is now, so that no search stops short of it.
  void close(std::size_t hole) {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = next(slots_, hole); slots_[i].item; i = next(slots_, i)) {
      const std::size_t home = start(slots_, slots_[i].hash);
      if (((i - home) & mask) < ((i - hole) & mask)) continue;
      slots_[hole] = slots_[i];
      hole = i;
    }
    slots_[hole] = {};
  }

  mutable foundation::SpinLock look_;  // for `slots_` and `queued` of the items
  Slots slots_;
  std::size_t count_ = 0;
  std::size_t queued_ = 0;
  Item* oldest_ = nullptr;
  Item* newest_ = nullptr;
};
