#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include <zlib.h>

#include "ZCommons/IO/NSDataUtils.h"
#include "ZCommons/IO/ZCIOAllocation.h"
#include "ZCommons/IO/ZCIOInflate.h"

using foundation::Data;
using foundation::DataView;

namespace {

constexpr int gzipHeader = 16;

struct DeflateEnd {
  void operator()(z_stream* state) const {
    deflateEnd(state);
    delete state;
  }
};

using Deflate = std::unique_ptr<z_stream, DeflateEnd>;

Deflate beginDeflate() {
  constexpr int defaultMemoryLevel = 8;
  auto state = std::make_unique<z_stream>();
  const int result = deflateInit2(state.get(), Z_DEFAULT_COMPRESSION, Z_DEFLATED,
                                  MAX_WBITS + gzipHeader, defaultMemoryLevel, Z_DEFAULT_STRATEGY);
  if (result != Z_OK) return nullptr;
  return Deflate(state.release());
}

// Doubles the capacity at least, so that growing costs time in proportion to the size.
void grow(Data& output, std::size_t size) {
  if (size > output.capacity()) {
    Data larger;
    ZCIOAllocation::checked([&] { larger.resize(std::max(size, 2 * output.capacity())); });
    std::copy(output.begin(), output.end(), larger.begin());
    output.swap(larger);
  }
  output.resize(size);
}

Data copyOf(DataView data) {
  Data copy;
  ZCIOAllocation::checked([&] { foundation::append(copy, data); });
  return copy;
}

// zlib counts what it is given in 32 bits.
uInt piece(std::size_t length) {
  return static_cast<uInt>(std::min<std::size_t>(length, std::numeric_limits<uInt>::max()));
}

/// Drives zlib from all of an input into a growing output.
class Run {
 public:
  Run(z_stream& state, DataView input) : state_(state), input_(input) {}

  Data output;

  /// What was produced, in memory of about its size.
  Data takeOutput() {
    if (output.capacity() / 2 > produced_) return copyOf(DataView(output).first(produced_));
    output.resize(produced_);
    return std::move(output);
  }

  std::size_t produced() const { return produced_; }
  bool isFull() const { return produced_ == output.size(); }
  bool hasMoreInput() const { return !input_.empty(); }
  bool isLastPiece() const { return piece(input_.size()) == input_.size(); }

  /// Calls `function` (deflate or inflate) once with what is left of the input and of the output.
  template <class Function>
  int call(Function function, int flush) {
    const uInt given = piece(input_.size());
    const uInt room = piece(output.size() - produced_);
    state_.next_in = const_cast<Bytef*>(input_.data());
    state_.avail_in = given;
    state_.next_out = output.data() + produced_;
    state_.avail_out = room;
    const int result = function(&state_, flush);
    input_ = input_.subspan(given - state_.avail_in);
    produced_ += room - state_.avail_out;
    return result;
  }

 private:
  z_stream& state_;
  DataView input_;
  std::size_t produced_ = 0;
};

/// The length that a gzip member states at its end, as far as its compressed form can hold it.
std::size_t statedLength(DataView data) {
  constexpr std::size_t bestRatio = 1032;
  constexpr std::size_t fieldLength = 4;
  if (data.size() < fieldLength) return data.size();
  std::size_t length = 0;
  for (std::size_t i = 1; i <= fieldLength; ++i) length = length << 8 | data[data.size() - i];
  return std::clamp(length, data.size(), data.size() * bestRatio);
}

/// An output of the stated length, which may be a lie, or of that of the data where there is no
/// memory for it.
void prepare(Data& output, DataView data) {
  try {
    output.resize(statedLength(data));
  } catch (const std::bad_alloc&) {
    grow(output, data.size());
  }
}

/// The content of undamaged data.
std::optional<Data> uncompressWhole(z_stream& state, DataView data) {
  Run run(state, data);
  prepare(run.output, data);
  while (true) {
    const int result = run.call(inflate, Z_FINISH);
    if (result == Z_STREAM_END) return run.takeOutput();
    if (result != Z_OK && result != Z_BUF_ERROR) return std::nullopt;
    if (!run.isFull() && !run.hasMoreInput()) return std::nullopt;
    if (run.isFull()) grow(run.output, 2 * run.output.size());
  }
}

/// What damaged data gives, in a buffer that grew by half the data's length each time it was full.
/// Callers rely on its length.
Data uncompressUncut(z_stream& state, DataView data) {
  Run run(state, data);
  int result = Z_OK;
  while (result == Z_OK) {
    if (run.isFull()) grow(run.output, run.output.size() + data.size() / 2);
    result = run.call(inflate, Z_SYNC_FLUSH);
  }
  std::fill(run.output.begin() + static_cast<std::ptrdiff_t>(run.produced()), run.output.end(), 0);
  return std::move(run.output);
}

}  // namespace

std::optional<Data> NSDataUtils::compressGzip(DataView data) {
  if (data.empty() || isCompressedGzip(data)) return copyOf(data);
  const Deflate state = beginDeflate();
  if (!state) return std::nullopt;
  Run run(*state, data);
  grow(run.output, deflateBound(state.get(), data.size()));
  while (run.call(deflate, run.isLastPiece() ? Z_FINISH : Z_NO_FLUSH) == Z_OK) {
    if (run.isFull()) grow(run.output, 2 * run.output.size());
  }
  return run.takeOutput();
}

std::optional<Data> NSDataUtils::uncompressGzip(DataView data) {
  if (!isCompressedGzip(data)) return copyOf(data);
  const ZCIOInflate state = ZCIOInflateBegin();
  if (!state) return std::nullopt;
  if (std::optional<Data> content = uncompressWhole(*state, data)) return content;
  inflateReset(state.get());
  return uncompressUncut(*state, data);
}

bool NSDataUtils::isCompressedGzip(DataView data) {
  return data.size() >= 2 && data[0] == 0x1F && data[1] == 0x8B;
}
