#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <vector>

/// What a cache has to do, in the plainest form: a list and two maps.
struct CacheModel {
  void add(int key, int value, double now) {
    const auto place = std::find(queue.begin(), queue.end(), key);
    if (place != queue.end()) {
      queue.erase(place);
    } else if (queue.size() >= maxItems && !queue.empty()) {
      values.erase(queue.front());
      queue.erase(queue.begin());
    }
    queue.push_back(key);
    values[key] = value;
    if (dates.empty() && !timerStart) timerStart = now;
    dates[key] = now;
  }

  std::optional<int> read(int key, double now) {
    std::erase(queue, key);
    queue.push_back(key);
    dates[key] = now;
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
  }

  void remove(int key) {
    std::erase(queue, key);
    values.erase(key);
    dates.erase(key);
    if (dates.empty()) timerStart.reset();
  }

  void clear() {
    queue.clear();
    values.clear();
    dates.clear();
    timerStart.reset();
  }

  // To be called at every moment at which the timer fires.
  void purge(double now, double ttl) {
    std::vector<int> old;
    for (const auto& [key, date] : dates) {
      if (now - date >= ttl) old.push_back(key);
    }
    for (const int key : old) remove(key);
  }

  std::size_t maxItems = 30;
  std::vector<int> queue;
  std::map<int, int> values;
  std::map<int, double> dates;
  std::optional<double> timerStart;
};
