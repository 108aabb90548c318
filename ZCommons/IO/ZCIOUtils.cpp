#include "ZCommons/IO/ZCIOUtils.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <string_view>

#include "ZCommons/IO/ZCIOAllocation.h"
#include "ZCommons/IO/ZCIOLineBuffer.h"
#include "ZCommons/Network/ZCNHttpUtils.h"

using foundation::Data;
using foundation::DataView;
using foundation::StringEncoding;
using ZCIOAllocation::affordable;
using ZCIOAllocation::checked;
using ZCIOAllocation::checkedSize;

namespace {

constexpr std::array<std::string_view, 5> newlines = {"\n", "\r", "\u0085", "\u2028", "\u2029"};

constinit std::atomic<std::int64_t> bufferSizeSetting{8192};
constinit std::atomic<std::int64_t> lineBufferSizeSetting{128};

// What is asked for at once on the way to `length` bytes.
std::size_t pieceFor(std::int64_t length) {
  const std::int64_t setting = ZCIOUtils::bufferSize();
  return checkedSize(length == ZCIO_UNLIMITED ? setting : std::min(length, setting));
}

// Reads once, up to `length` bytes behind those of `data`; returns whether any came.
bool readBehind(ZCIOStream& stream, Data& data, std::size_t length) {
  const std::size_t size = data.size();
  const std::size_t request = affordable(length, size);
  checked([&] { data.resize(size + request); });
  const std::int64_t count = stream.read(data.data() + size, request);
  data.resize(size + static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
  return count >= 1;
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

std::int64_t ZCIOUtils::bufferSize() { return bufferSizeSetting.load(std::memory_order_relaxed); }

void ZCIOUtils::setBufferSize(std::int64_t size) {
  bufferSizeSetting.store(size, std::memory_order_relaxed);
}

std::int64_t ZCIOUtils::lineBufferSize() {
  return lineBufferSizeSetting.load(std::memory_order_relaxed);
}

void ZCIOUtils::setLineBufferSize(std::int64_t size) {
  lineBufferSizeSetting.store(size, std::memory_order_relaxed);
}

Data ZCIOUtils::read(ZCIOStream& stream, std::int64_t len) {
  const std::size_t length = checkedSize(len);
  Data data;
  while (data.size() < length && readBehind(stream, data, length - data.size())) {
  }
  return data;
}

bool ZCIOUtils::isEmptyOrWhitespace(DataView data) {
  return std::all_of(data.begin(), data.end(), isEmptyOrWhitespaceByte);
}

std::optional<Data> ZCIOUtils::readLineBytes(ZCIOStream& stream) {
  ZCIOLineBuffer line(lineBufferSize());
  if (!line.readFrom(stream)) return std::nullopt;
  Data bytes;
  checked([&] { foundation::append(bytes, line.bytes()); });
  return bytes;
}

std::optional<std::string> ZCIOUtils::readLine(ZCIOStream& stream) {
  return readLine(stream, ZCNHttpUtils::defaultHttpEncoding());
}

std::optional<std::string> ZCIOUtils::readLine(ZCIOStream& stream, StringEncoding encoding) {
  ZCIOLineBuffer line(lineBufferSize());
  if (!line.readFrom(stream) || line.bytes().empty()) return std::nullopt;
  return toStringRemovingTrailingCrLf(line.bytes(), encoding);
}

std::string ZCIOUtils::toStringRemovingTrailingCrLf(DataView data) {
  return toStringRemovingTrailingCrLf(data, ZCNHttpUtils::defaultHttpEncoding());
}

std::string ZCIOUtils::toStringRemovingTrailingCrLf(DataView data, StringEncoding encoding) {
  std::optional<std::string> text = foundation::stringFromData(data, encoding);
  if (!text) text = foundation::stringFromData(data, StringEncoding::ISOLatin1);
  const std::string_view line = trimmingNewlines(*text);
  if (line.size() == text->size()) return *std::move(text);
  return std::string(line);
}

std::optional<Data> ZCIOUtils::readToEnd(ZCIOStream& stream, std::int64_t length) {
  if (length == 0) return std::nullopt;
  const std::size_t piece = pieceFor(length);
  const auto limit = static_cast<std::size_t>(length);  // ZCIO_UNLIMITED is the largest
  Data data;
  while (data.size() < limit && readBehind(stream, data, std::min(piece, limit - data.size()))) {
  }
  return data;
}

std::int64_t ZCIOUtils::copyFrom(ZCIOStream& from, ZCIOStream& to, std::int64_t length) {
  if (length == 0) return 0;
  const std::size_t piece = pieceFor(length);
  const auto limit = static_cast<std::size_t>(length);
  Data buffer;
  std::size_t total = 0;
  while (total < limit) {
    checked([&] { buffer.resize(affordable(piece, total)); });
    const std::size_t request = std::min(buffer.size(), limit - total);
    const std::int64_t count = from.read(buffer.data(), request);
    if (count < 1) break;
    to.write(buffer.data(), static_cast<std::size_t>(count));
    total += static_cast<std::size_t>(count);
  }
  return length == ZCIO_UNLIMITED ? 0 : static_cast<std::int64_t>(total);
}
