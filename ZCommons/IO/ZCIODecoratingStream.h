#pragma once

#include <memory>

#include "ZCommons/IO/ZCIOStream.h"

/// A stream that works on another one, which it owns together with whoever else holds it.
///
/// What a derived class does not replace is that of a stream without a delegate: its time-outs are
/// unknown and its counters stay 0, whatever those of the inner stream are.
///
/// Thread safety: one thread at a time, as the inner stream.
class ZCIODecoratingStream : public ZCIOStream {
 public:
  /// initWithStream:
  ///
  /// Works on `stream`. Raises NSInvalidArgumentException ("stream") when it is null.
  explicit ZCIODecoratingStream(std::shared_ptr<ZCIOStream> stream);

  /// initWithDelegate:
  ///
  /// Works on a plain stream over `delegate`, which is held weakly.
  explicit ZCIODecoratingStream(std::weak_ptr<ZCIOStreamDelegate> delegate);

 protected:
  ZCIOStream& inner() const { return *inner_; }

 private:
  const std::shared_ptr<ZCIOStream> inner_;
};
