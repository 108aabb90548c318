#include "ZCommons/IO/ZCIODecoratingStream.h"

#include <utility>

#include "foundation/NSException.h"

ZCIODecoratingStream::ZCIODecoratingStream(std::shared_ptr<ZCIOStream> stream)
    : inner_(std::move(stream)) {
  if (!inner_) foundation::raiseArgumentException("stream");
}

ZCIODecoratingStream::ZCIODecoratingStream(std::weak_ptr<ZCIOStreamDelegate> delegate)
    : ZCIODecoratingStream(std::make_shared<ZCIOStream>(std::move(delegate))) {}
