#pragma once

#include <memory>

struct z_stream_s;

/// Lets go of zlib's state for decompression.
struct ZCIOInflateEnd {
  void operator()(z_stream_s* state) const;
};

using ZCIOInflate = std::unique_ptr<z_stream_s, ZCIOInflateEnd>;

/// A fresh state, without input, that decompresses gzip (RFC 1952) or zlib (RFC 1950), told apart
/// by their headers, with a window of 32 KiB; null when zlib cannot make one.
ZCIOInflate ZCIOInflateBegin();
