#include "logging/DDLogMessagePool.h"

#include <utility>

DDLogMessagePool::Held DDLogMessagePool::hold(DDLogMessage&& message) {
  Place* place = &places_[next_.fetch_add(1, std::memory_order_relaxed) % placeCount];
  if (place->taken.exchange(true, std::memory_order_acquire)) {
    place = std::make_unique<Place>().release();
    place->isPooled = false;
  }
  Held held(place);
  place->message.emplace(std::move(message));
  return held;
}

void DDLogMessagePool::Vacate::operator()(Place* place) const {
  if (!place->isPooled) return std::default_delete<Place>()(place);
  place->message.reset();
  place->taken.store(false, std::memory_order_release);
}
