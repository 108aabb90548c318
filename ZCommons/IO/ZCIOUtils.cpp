#include "ZCommons/IO/ZCIOUtils.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>
#include <string_view>

#include "foundation/NSException.h"

using foundation::Data;
using foundation::DataView;
using foundation::StringEncoding;

namespace {

constexpr StringEncoding defaultEncoding = StringEncoding::ISOLatin1;

constexpr std::array<std::string_view, 5> newlines = {"\n", "\r", "\u0085", "\u2028", "\u2029"};

constinit std::atomic<std::int64_t> lineBufferSizeSetting{128};

// Doubles at least, so that a line of any length costs time in proportion to it.
void grow(Data& buffer, std::size_t step) {
  try {
    buffer.reserve(buffer.size() + std::max(step, buffer.size()));
  } catch (const std::bad_alloc&) {
    foundation::raiseMallocException("buffer");
  } catch (const std::length_error&) {
    foundation::raiseMallocException("buffer");
  }
}

std::string_view trimmingNewlines(std::string_view text) {
  const auto isAtStart = [&](std::string_view newline) { return text.starts_with(newline); };
  const auto isAtEnd = [&](std::string_view newline) { return text.ends_with(newline); };
  auto newline = newlines.end();
  while ((newline = std::find_if(newlines.begin(), newlines.end(), isAtStart)) != newlines.end()) {
    text.remove_prefix(newline->size());
  }
  while ((newline = std::find_if(newlines.begin(), newlines.end(), isAtEnd)) != newlines.end()) {
    text.remove_suffix(newline->size());
  }
  return text;
}

}  // namespace

std::int64_t ZCIOUtils::lineBufferSize() {
  return lineBufferSizeSetting.load(std::memory_order_relaxed);
}

void ZCIOUtils::setLineBufferSize(std::int64_t size) {
  lineBufferSizeSetting.store(size, std::memory_order_relaxed);
}

std::optional<Data> ZCIOUtils::readLineBytes(ZCIOStream& stream) {
  const auto step = static_cast<std::size_t>(lineBufferSize());
  Data line;
  grow(line, step);
  std::uint8_t byte = 0;
  while (true) {
    const std::int64_t count = stream.read(&byte, 1);
    if (count == ZCIO_ERROR) return std::nullopt;
    if (count < 1) return line;
    if (line.size() == line.capacity()) grow(line, step);
    line.push_back(byte);
    if (byte == '\n') return line;
  }
}

std::optional<std::string> ZCIOUtils::readLine(ZCIOStream& stream) {
  return readLine(stream, defaultEncoding);
}

std::optional<std::string> ZCIOUtils::readLine(ZCIOStream& stream, StringEncoding encoding) {
  const std::optional<Data> line = readLineBytes(stream);
  if (!line || line->empty()) return std::nullopt;
  return toStringRemovingTrailingCrLf(*line, encoding);
}

std::string ZCIOUtils::toStringRemovingTrailingCrLf(DataView data) {
  return toStringRemovingTrailingCrLf(data, defaultEncoding);
}

std::string ZCIOUtils::toStringRemovingTrailingCrLf(DataView data, StringEncoding encoding) {
  std::optional<std::string> text = foundation::stringFromData(data, encoding);
  if (!text) text = foundation::stringFromData(data, StringEncoding::ISOLatin1);
  const std::string_view line = trimmingNewlines(*text);
  if (line.size() == text->size()) return *std::move(text);
  return std::string(line);
}
