#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>

#include <zlib.h>

#include "ZCommons/IO/ZCIOGzipStream.h"

using foundation::Data;
using foundation::DataView;

namespace {

struct InputDelegate : ZCIOStreamDelegate {
  explicit InputDelegate(DataView bytes) : input(bytes) {}
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) override {
    const DataView given = input.first(std::min({maxLength, input.size(), longest}));
    std::copy(given.begin(), given.end(), buffer);
    input = input.subspan(given.size());
    return static_cast<std::int64_t>(given.size());
  }
  DataView input;
  std::size_t longest = SIZE_MAX;
};

/// The reading of a gzip stream told plainly: all that a step of input gives is kept.
struct Model {
  std::size_t read(std::uint8_t* buffer, std::size_t length) {
    const bool isLeftOver = held.size() < length && (status == 1 || status == -1);
    while (held.size() < length && !isLeftOver && status != 1) feed();
    const std::size_t count = std::min(length, held.size());
    std::copy_n(held.begin(), count, buffer);
    held.erase(held.begin(), held.begin() + static_cast<std::ptrdiff_t>(count));
    if (!isLeftOver) bytesRead += count;
    return count;
  }

  void feed() {
    std::uint8_t input[16384], output[16384];
    const std::int64_t given = stream.read(input, sizeof input);
    if (given < 1) status = 1;
    if (given < 1 || status == -1) return;
    state->next_in = input;
    state->avail_in = static_cast<uInt>(given);
    do {
      state->next_out = output;
      state->avail_out = sizeof output;
      status = inflate(state.get(), Z_SYNC_FLUSH);
      if (status == Z_NEED_DICT || (status < 0 && status != Z_BUF_ERROR)) {
        status = -1;
        return;
      }
      held.insert(held.end(), output, state->next_out);
    } while (state->avail_out == 0);
  }

  ZCIOStream& stream;
  ZCIOInflate state = ZCIOInflateBegin();
  Data held = {};
  int status = 0;
  std::uint64_t bytesRead = 0;
};

}  // namespace

// Counts, bytes, and how far the inner stream is read are those of the model, whatever the length
// of the reads and of the inner stream's pieces, which the first two bytes say.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  if (length < 2) return 0;
  const DataView body(bytes + 2, length - 2);
  const auto delegate = std::make_shared<InputDelegate>(body);
  const auto modelDelegate = std::make_shared<InputDelegate>(body);
  delegate->longest = modelDelegate->longest = std::size_t{bytes[1]} + 1;
  ZCIOGzipStream stream(delegate);
  ZCIOStream modelStream(modelDelegate);
  Model model{modelStream};
  Data buffer(std::size_t{8} + bytes[0] * std::size_t{bytes[0]}), expected(buffer.size());
  std::size_t count = 1;
  while (count > 0) {
    count = model.read(expected.data(), expected.size());
    if (stream.read(buffer.data(), buffer.size()) != static_cast<std::int64_t>(count) ||
        !std::equal(buffer.data(), buffer.data() + count, expected.data()) ||
        stream.bytesRead() != model.bytesRead ||
        delegate->input.size() != modelDelegate->input.size()) {
      std::abort();
    }
  }
  return 0;
}
