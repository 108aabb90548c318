#pragma once

#include <functional>

namespace platform {

/// Starts a thread of the platform's own, named for debuggers, which no signal of the process is
/// delivered to and which nobody joins. Returns false when the system gives no thread.
bool startSystemThread(const char* name, std::function<void()> body);

}  // namespace platform
