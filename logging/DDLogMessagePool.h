#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>

#include "logging/DDLogMessage.h"

/// Places for messages that wait, used over and over: were one thread to allocate what another
/// frees, message by message, both would keep waiting for the allocator.
///
/// Never destroyed before its messages. Thread safety: any thread; nothing waits.
class DDLogMessagePool {
  struct Place {
    std::atomic<bool> taken{false};
    bool isPooled = true;
    std::optional<DDLogMessage> message;
  };

  struct Vacate {
    void operator()(Place* place) const;
  };

 public:
  /// A message in its place, which is free again when this is gone.
  class Held {
   public:
    const DDLogMessage& operator*() const { return *place_->message; }

   private:
    friend class DDLogMessagePool;
    explicit Held(Place* place) : place_(place) {}

    std::unique_ptr<Place, Vacate> place_;
  };

  /// Moves a message to a place of the pool, or to the heap when the next place in turn is taken.
  Held hold(DDLogMessage&& message);

 private:
  static constexpr std::size_t placeCount = 1024;

  std::atomic<std::size_t> next_{0};
  std::array<Place, placeCount> places_;
};
