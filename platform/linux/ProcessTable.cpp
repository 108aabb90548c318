#include "platform/ProcessTable.h"

#include "platform/linux/ProcFileSystem.h"

namespace platform {
namespace {

class ProcProcessTable final : public ProcessTable {
 public:
  foundation::Result<std::vector<Entry>> processes() override {
    const foundation::Result<std::vector<pid_t>> pids = files_.processIdentifiers();
    if (!pids) return pids.error();
    std::vector<Entry> entries;
    entries.reserve(pids->size());
    for (const pid_t pid : *pids) {
      if (const auto status = files_.status(pid)) entries.push_back({pid, status->parent});
    }
    return entries;
  }

 private:
  const ProcFileSystem files_;
};

}  // namespace

ProcessTable& ProcessTable::production() {
  static ProcessTable& table = *new ProcProcessTable;
  return table;
}

}  // namespace platform
