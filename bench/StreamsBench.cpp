#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "ZCommons/IO/ZCIOChunkedStream.h"
#include "ZCommons/IO/ZCIOMemoryBuffer.h"
#include "foundation/Format.h"
#include "logging/DDLog.h"

#ifdef ZARVO_HAVE_BEAST
#include <boost/beast/http.hpp>
#endif

using foundation::Data;
using foundation::DataView;

namespace {

constexpr std::size_t bodyLength = 256 << 10;
constexpr std::size_t readLength = 64 << 10;

const bool normalLogLevel = [] {
  DDLog::setGlobalLogLevel(DDLogLevel::info);
  return true;
}();

/// Gives out the bytes of others, from the start again after `rewind`; what it is given is gone.
class MemoryStream : public ZCIOStream {
 public:
  explicit MemoryStream(DataView bytes) : bytes_(bytes), rest_(bytes) {}

  void rewind() { rest_ = bytes_; }

  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override {
    const std::size_t count = std::min(maxLength, rest_.size());
    if (count == 1) {
      *buffer = rest_.front();
    } else {
      std::memcpy(buffer, rest_.data(), count);
    }
    rest_ = rest_.subspan(count);
    return static_cast<std::int64_t>(count);
  }
  std::int64_t write(const std::uint8_t*, std::size_t length) override {
    return static_cast<std::int64_t>(length);
  }

 private:
  const DataView bytes_;
  DataView rest_;
};

const Data& payload() {
  static const Data bytes = [] {
    Data filled(bodyLength);
    for (std::size_t i = 0; i < filled.size(); ++i) filled[i] = static_cast<std::uint8_t>(i * 7);
    return filled;
  }();
  return bytes;
}

std::string sizeLineOf(std::size_t chunk) { return foundation::format("%lX\r\n", chunk); }

Data chunked(std::size_t chunk) {
  Data body;
  for (std::size_t start = 0; start < bodyLength; start += chunk) {
    foundation::append(body, foundation::dataOf(sizeLineOf(chunk)));
    foundation::append(body, DataView(payload()).subspan(start, chunk));
    foundation::append(body, foundation::dataOf("\r\n"));
  }
  foundation::append(body, foundation::dataOf("0\r\n\r\n"));
  return body;
}

void check(benchmark::State& state, std::size_t total) {
  if (total != bodyLength) state.SkipWithError("lost bytes");
}

void count(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bodyLength) * state.iterations());
}

void chunkedStream(benchmark::State& state) {
  const Data body = chunked(static_cast<std::size_t>(state.range(0)));
  const auto inner = std::make_shared<MemoryStream>(body);
  Data buffer(readLength);
  for (auto _ : state) {
    inner->rewind();
    ZCIOChunkedStream stream(inner);
    std::size_t total = 0;
    std::int64_t count = 0;
    while ((count = stream.read(buffer.data(), buffer.size())) > 0) {
      total += static_cast<std::size_t>(count);
      benchmark::ClobberMemory();
    }
    check(state, total);
  }
  count(state);
}
BENCHMARK(chunkedStream)->Arg(64 << 10)->Arg(1 << 10)->Arg(16);

// What chunked reading asks of its inner stream, alone: lines byte by byte, chunks as a whole.
void peerReadsAlone(benchmark::State& state) {
  const auto chunk = static_cast<std::size_t>(state.range(0));
  const Data body = chunked(chunk);
  const std::size_t line = sizeLineOf(chunk).size();
  const std::unique_ptr<ZCIOStream> inner = std::make_unique<MemoryStream>(body);
  benchmark::DoNotOptimize(inner.get());
  Data buffer(readLength);
  for (auto _ : state) {
    static_cast<MemoryStream&>(*inner).rewind();
    std::size_t total = 0;
    for (std::size_t start = 0; start < bodyLength; start += chunk) {
      std::uint8_t byte = 0;
      for (std::size_t i = 0; i < line; ++i) inner->read(&byte, 1);
      total += static_cast<std::size_t>(inner->read(buffer.data() + start % readLength, chunk));
      for (std::size_t i = 0; i < 2; ++i) inner->read(&byte, 1);
      benchmark::ClobberMemory();
    }
    check(state, total);
  }
  count(state);
}
BENCHMARK(peerReadsAlone)->Arg(64 << 10)->Arg(1 << 10)->Arg(16);

// The bytes of the same chunks, each copied at once from where it stands in the body.
void peerPlainCopy(benchmark::State& state) {
  auto chunk = static_cast<std::size_t>(state.range(0));
  const Data body = chunked(chunk);
  const std::size_t framed = sizeLineOf(chunk).size() + chunk + 2;
  benchmark::DoNotOptimize(chunk);
  Data buffer(readLength);
  for (auto _ : state) {
    const std::uint8_t* bytes = body.data() + sizeLineOf(chunk).size();
    for (std::size_t start = 0; start < bodyLength; start += chunk, bytes += framed) {
      std::memcpy(buffer.data() + start % readLength, bytes, chunk);
      benchmark::ClobberMemory();
    }
  }
  count(state);
}
BENCHMARK(peerPlainCopy)->Arg(64 << 10)->Arg(1 << 10)->Arg(16);

#ifdef ZARVO_HAVE_BEAST
void peerBeast(benchmark::State& state) {
  namespace http = boost::beast::http;
  const Data body = chunked(static_cast<std::size_t>(state.range(0)));
  const std::string header = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  Data buffer(readLength);
  for (auto _ : state) {
    http::response_parser<http::buffer_body> parser;
    boost::beast::error_code error;
    parser.body_limit(boost::none);
    parser.eager(true);
    parser.put(boost::asio::buffer(header), error);
    std::size_t total = 0;
    std::size_t position = 0;
    auto& target = parser.get().body();
    while (!parser.is_done()) {
      target.data = buffer.data();
      target.size = buffer.size();
      const auto rest = boost::asio::buffer(body.data() + position, body.size() - position);
      position += parser.put(rest, error);
      total += buffer.size() - target.size;
      benchmark::ClobberMemory();
      if (error && error != http::error::need_buffer) return state.SkipWithError("parser failed");
    }
    check(state, total);
  }
  count(state);
}
BENCHMARK(peerBeast)->Arg(64 << 10)->Arg(1 << 10)->Arg(16);
#endif

// 1 GiB in pieces of 4 KiB, while the given number of bytes waits.
constexpr std::size_t passing = 1 << 30;
constexpr std::size_t piece = 4 << 10;

void memoryBuffer(benchmark::State& state) {
  const auto backlog = static_cast<std::size_t>(state.range(0));
  Data bytes(piece, 7);
  for (auto _ : state) {
    const auto buffer = std::make_shared<ZCIOMemoryBuffer>();
    ZCIOStream stream(buffer);
    std::size_t waiting = 0;
    for (std::size_t written = 0; written < passing; written += piece) {
      waiting += static_cast<std::size_t>(stream.write(bytes.data(), piece));
      if (waiting <= backlog) continue;
      waiting -= static_cast<std::size_t>(stream.read(bytes.data(), piece));
      benchmark::ClobberMemory();
    }
    if (waiting != buffer->length()) state.SkipWithError("lost bytes");
  }
}
BENCHMARK(memoryBuffer)->Arg(0)->Arg(64 << 10)->Arg(64 << 20)->Unit(benchmark::kMillisecond);

// Each piece into and out of a ring as long as the backlog.
void peerTwoCopies(benchmark::State& state) {
  const std::size_t length = static_cast<std::size_t>(state.range(0)) + piece;
  Data bytes(piece, 7);
  for (auto _ : state) {
    Data ring(length);
    std::size_t position = 0;
    for (std::size_t written = 0; written < passing; written += piece) {
      std::memcpy(ring.data() + position, bytes.data(), piece);
      position += piece;
      if (position == length) position = 0;
      if (written + piece < length) continue;
      std::memcpy(bytes.data(), ring.data() + position, piece);
      benchmark::ClobberMemory();
    }
  }
}
BENCHMARK(peerTwoCopies)->Arg(0)->Arg(64 << 10)->Arg(64 << 20)->Unit(benchmark::kMillisecond);

}  // namespace
