#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "ZCommons/IO/ZCIOStream.h"
#include "foundation/Data.h"
#include "foundation/Error.h"
#include "platform/FileHandle.h"

/// The delegate of a stream that reads a file from its beginning to its end.
///
/// It asks the system for 64 KiB at a time, however few bytes the stream asks for. Time-outs and
/// writing are not offered. One thread at a time.
///
///     const auto reader = ZCFFileReader::openForReading("/etc/hosts");
///     if (!reader) return reader.error();
///     ZCIOStream stream(*reader);   // the caller keeps the reader alive
class ZCFFileReader : public ZCIOStreamDelegate {
 public:
  static foundation::Result<std::shared_ptr<ZCFFileReader>> openForReading(std::string_view path);

  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream& stream) override;

  /// Why the last read failed; nothing while none has.
  const std::optional<foundation::Error>& error() const { return error_; }

 private:
  explicit ZCFFileReader(platform::FileHandle file);

  bool fill();

  const platform::FileHandle file_;
  foundation::Data buffer_;
  foundation::DataView unread_;  // a part of `buffer_`
  std::optional<foundation::Error> error_;
};
