#include "platform/posix/FolderListing.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>

#include <cstring>
#include <memory>
#include <string_view>

#include "platform/FileHandle.h"

namespace platform {
namespace {

struct CloseStream {
  void operator()(DIR* stream) const { closedir(stream); }
};

bool isFolderItselfOrAbove(std::string_view name) { return name == "." || name == ".."; }

}  // namespace

bool FolderListing::read(int descriptor) {
  entries_.clear();
  position_ = 0;
  FileHandle copy(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
  if (!copy) return false;
  const std::unique_ptr<DIR, CloseStream> stream(fdopendir(copy.descriptor()));
  if (!stream) return false;
  copy.release();
  for (;;) {
    errno = 0;
    const dirent* const entry = readdir(stream.get());
    if (!entry) break;
    const std::string_view name = entry->d_name;
    if (isFolderItselfOrAbove(name)) continue;
    entries_ += static_cast<char>(entry->d_type);
    entries_.append(name.data(), name.size() + 1);
  }
  return errno == 0;
}

std::optional<FolderListing::Entry> FolderListing::next() {
  if (position_ == entries_.size()) return std::nullopt;
  const char* const entry = entries_.data() + position_;
  position_ += std::strlen(entry + 1) + 2;
  return Entry{entry + 1, static_cast<unsigned char>(*entry)};
}

}  // namespace platform
