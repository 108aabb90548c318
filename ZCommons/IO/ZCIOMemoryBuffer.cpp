#include "ZCommons/IO/ZCIOMemoryBuffer.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ZCommons/IO/ZCIOAllocation.h"

using foundation::Data;
using foundation::DataView;

namespace {

constexpr std::size_t smallestBlock = 512;
constexpr std::size_t largestBlock = 64 * 1024;  // but for a larger write

std::size_t room(const Data& bytes) { return bytes.capacity() - bytes.size(); }

}  // namespace

// Behind the joined bytes there is room for as many again: that is why joining stays rare.
DataView ZCIOMemoryBuffer::data() {
  if (blocks_.empty()) return {};
  if (blocks_.size() > 1) {
    Block joined;
    ZCIOAllocation::checked([&] { joined.bytes.reserve(2 * length_); });
    for (const Block& block : blocks_) {
      foundation::append(joined.bytes, DataView(block.bytes).subspan(block.start));
    }
    blocks_.resize(1);
    blocks_.front() = std::move(joined);
  }
  return DataView(blocks_.front().bytes).subspan(blocks_.front().start);
}

std::int64_t ZCIOMemoryBuffer::read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) {
  const std::size_t total = std::min(maxLength, length_);
  for (std::size_t done = 0; done < total;) {
    Block& block = blocks_.front();
    const std::size_t count = std::min(total - done, block.bytes.size() - block.start);
    std::memcpy(buffer + done, block.bytes.data() + block.start, count);
    block.start += count;
    done += count;
    if (block.start == block.bytes.size()) removeFirstBlock();
  }
  length_ -= total;
  return static_cast<std::int64_t>(total);
}

std::int64_t ZCIOMemoryBuffer::write(const std::uint8_t* buffer, std::size_t maxLength,
                                     ZCIOStream&) {
  if (maxLength == 0) return 0;
  if (blocks_.empty() || room(blocks_.back().bytes) < maxLength) addBlock(maxLength);
  foundation::append(blocks_.back().bytes, {buffer, maxLength});
  length_ += maxLength;
  return static_cast<std::int64_t>(maxLength);
}

// Blocks grow with what waits: few bytes take little memory, many take few blocks.
void ZCIOMemoryBuffer::addBlock(std::size_t capacity) {
  ZCIOAllocation::checked([&] {
    Block block;
    block.bytes.reserve(std::max(capacity, std::clamp(length_, smallestBlock, largestBlock)));
    blocks_.push_back(std::move(block));
  });
}

// The last block stays for the next write, unless it is a large one.
void ZCIOMemoryBuffer::removeFirstBlock() {
  Block& block = blocks_.front();
  if (blocks_.size() > 1 || block.bytes.capacity() > largestBlock) return blocks_.pop_front();
  block.bytes.clear();
  block.start = 0;
}
