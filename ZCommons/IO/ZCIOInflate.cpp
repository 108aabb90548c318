#include "ZCommons/IO/ZCIOInflate.h"

#include <zlib.h>

namespace {

constexpr int automaticHeader = 32;

}  // namespace

void ZCIOInflateEnd::operator()(z_stream_s* state) const {
  inflateEnd(state);
  delete state;
}

ZCIOInflate ZCIOInflateBegin() {
  auto state = std::make_unique<z_stream>();
  if (inflateInit2(state.get(), MAX_WBITS + automaticHeader) != Z_OK) return nullptr;
  return ZCIOInflate(state.release());
}
