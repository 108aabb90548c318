#pragma once

#include <initializer_list>
#include <string_view>

namespace platform::StandardError {

/// Writes up to 8 pieces to the standard error stream, unbuffered, by one gathered write, so that
/// they stay together whatever others write there. What the stream refuses is lost; one that nobody
/// reads any more raises no signal. Any thread.
void write(std::initializer_list<std::string_view> pieces);

}  // namespace platform::StandardError
