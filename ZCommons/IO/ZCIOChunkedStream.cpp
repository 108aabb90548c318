#include "ZCommons/IO/ZCIOChunkedStream.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>

#include "ZCommons/IO/ZCIOLineBuffer.h"
#include "ZCommons/IO/ZCIOUtils.h"
#include "ZCommons/Network/ZCNHttpUtils.h"
#include "foundation/Data.h"
#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "foundation/StringEncoding.h"
#include "foundation/Unicode.h"
#include "logging/DDLogMacros.h"

using foundation::Data;
using foundation::dataOf;
using foundation::DataView;

namespace {

constexpr std::string_view lastChunk = "0\r\n\r\n";

bool isASCIIDigit(char c) { return c >= '0' && c <= '9'; }

// A digit, with which most sizes begin, needs no look into the character database.
std::string_view withoutLeadingBlanks(std::string_view text) {
  while (!text.empty() && !isASCIIDigit(text.front())) {
    const foundation::Character character = foundation::firstCharacter(text);
    if (!foundation::isWhitespaceOrNewline(static_cast<char32_t>(character.codePoint))) break;
    text.remove_prefix(character.length);
  }
  return text;
}

// The next line, as `readLine` of the utilities gives it; empty when there is none.
std::string_view nextLine(ZCIOStream& stream, ZCIOLineBuffer& buffer) {
  return buffer.readFrom(stream) ? buffer.latin1Text() : std::string_view();
}

Data frameOf(DataView payload) {
  const DataView lineEnd = dataOf(ZCNHttpUtils::CRLFData());
  const std::string size = foundation::format("%lX", payload.size());
  Data frame;
  frame.reserve(size.size() + payload.size() + 2 * lineEnd.size());
  for (const DataView piece : {dataOf(size), lineEnd, payload, lineEnd}) {
    foundation::append(frame, piece);
  }
  return frame;
}

}  // namespace

ZCIOChunkedStream::~ZCIOChunkedStream() {
  try {
    writeLastChunk();
  } catch (...) {
  }
}

std::int64_t ZCIOChunkedStream::read(std::uint8_t* buffer, std::size_t maxLength) {
  if (maxLength == 0 || currentChunkLength_ == 0) return 0;
  DDLogVerbose(__LINE__, "(%@[%p] %@) ChunkedStream.Read, len=%lu", THIS_FILE, this,
               "read:maxLength:", maxLength);
  std::size_t total = 0;
  while (total < maxLength) {
    const std::int64_t remaining = currentChunkLength_ - currentChunkReadBytes_;
    if (remaining <= 0) {
      currentChunkLength_ = readNextChunkLength();
      currentChunkReadBytes_ = 0;
      if (currentChunkLength_ == 0) break;
      continue;
    }
    const std::size_t request = std::min(static_cast<std::size_t>(remaining), maxLength - total);
    const std::int64_t count = inner().read(buffer + total, request);
    if (count < 1) {
      DDLogDebug(__LINE__,
                 "(%@[%p] %@) ChunkedStream.Read, Unexpected EOF in the chunked stream, returning "
                 "ZCIO_ERROR",
                 THIS_FILE, this, "read:maxLength:");
      return ZCIO_ERROR;
    }
    currentChunkReadBytes_ += count;
    total += static_cast<std::size_t>(count);
  }
  return static_cast<std::int64_t>(total);
}

std::int64_t ZCIOChunkedStream::readNextChunkLength() {
  ZCIOLineBuffer buffer(ZCIOUtils::lineBufferSize());
  std::string_view line = nextLine(inner(), buffer);
  // The line end behind the bytes of the chunk before reads as an empty line.
  if (line.empty()) line = nextLine(inner(), buffer);
  if (line.empty()) return 0;
  DDLogVerbose(__LINE__, "(%@[%p] %@) ChunkedStream.ReadNextChunk, HEX Chunk length is %@",
               THIS_FILE, this, "readNextChunkLength", line);
  const std::int64_t length = getChunkLength(line);
  if (length == 0) {
    readLineBehindLastChunk();
    return 0;
  }
  DDLogVerbose(__LINE__, "(%@[%p] %@) ChunkedStream.ReadNextChunk, Chunk length is %lu", THIS_FILE,
               this, "readNextChunkLength", length);
  return length;
}

void ZCIOChunkedStream::readLineBehindLastChunk() {
  DDLogVerbose(__LINE__,
               "(%@[%p] %@) ChunkedStream.ReadNextChunk, This is last chunk, returning null",
               THIS_FILE, this, "readNextChunkLength");
  try {
    ZCIOLineBuffer(ZCIOUtils::lineBufferSize()).readFrom(inner());
  } catch (const foundation::NSException&) {
    DDLogWarn(__LINE__, "(%@) ChunkedStream.ReadNextChunk, Error reading chunk", THIS_FILE);
  }
}

std::int64_t ZCIOChunkedStream::getChunkLength(std::string_view line) {
  line = withoutLeadingBlanks(line);
  if (line.size() > 2 && line[0] == '0' && (line[1] == 'x' || line[1] == 'X')) {
    line.remove_prefix(2);
  }
  std::uint32_t length = 0;
  const auto result = std::from_chars(line.data(), line.data() + line.size(), length, 16);
  return result.ec == std::errc::result_out_of_range ? UINT32_MAX : length;
}

std::int64_t ZCIOChunkedStream::write(const std::uint8_t* buffer, std::size_t maxLength) {
  if (maxLength == 0) return writeLastChunk();
  if (!buffer) return ZCIO_ERROR;
  const Data frame = frameOf({buffer, maxLength});
  const std::int64_t count = inner().write(frame.data(), frame.size());
  if (count < 1) return ZCIO_ERROR;
  if (static_cast<std::size_t>(count) != frame.size()) {
    writeErrorFromResult(count);
    return ZCIO_ERROR;
  }
  return count;
}

void ZCIOChunkedStream::writeErrorFromResult(std::int64_t result) const {
  DDLogWarn(__LINE__,
            "(%@) Output stream have no space available. Writen bytes - %li. "
            "[ZCIOChunkedStream write]",
            THIS_FILE, result);
}

std::int64_t ZCIOChunkedStream::writeLastChunk() {
  if (finishedWriting_) return 0;
  finishedWriting_ = true;
  const DataView bytes = dataOf(lastChunk);
  const auto length = static_cast<std::int64_t>(bytes.size());
  return inner().write(bytes.data(), bytes.size()) == length ? length : ZCIO_ERROR;
}
