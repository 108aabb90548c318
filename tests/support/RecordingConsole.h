#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/Console.h"

namespace support {

/// Takes the console's place for a scope and keeps its lines.
class RecordingConsole : public platform::Console {
 public:
  void write(std::string_view text) override {
    foundation::MutexLock lock(mutex_);
    lines_.emplace_back(text);
  }

  std::vector<std::string> lines() const {
    foundation::MutexLock lock(mutex_);
    return lines_;
  }

 private:
  mutable foundation::Mutex mutex_;
  std::vector<std::string> lines_ ZARVO_GUARDED_BY(mutex_);
  const platform::Console::Replacement replacement_{*this};
};

}  // namespace support
