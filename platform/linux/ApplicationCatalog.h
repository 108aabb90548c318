#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace platform {

/// An installed application: a desktop entry.
struct Application {
  std::string identifier;
  std::optional<std::string> name;
  std::string entryPath;
  std::string executable;  ///< the program's real path; empty when it says nothing of itself
  bool noDisplay = false;
  std::size_t argumentCount = 0;  ///< how many fixed arguments the program is started with
};

/// The installed applications, read from the folders of desktop entries and read again when one of
/// the folders has changed. Thread safety: any thread.
class ApplicationCatalog {
 public:
  /// Where to look.
  struct Places {
    std::vector<std::string> folders;     ///< "applications" folders; an earlier one wins
    std::vector<std::string> searchPath;  ///< folders of programs that are given without a path
    std::vector<std::string> localeKeys;  ///< languages of names, best first
  };

  /// The applications at one moment; immutable.
  class Contents {
   public:
    explicit Contents(std::vector<Application> applications);
    Contents(const Contents&) = delete;
    Contents& operator=(const Contents&) = delete;

    /// Null when there is none.
    const Application* withIdentifier(std::string_view identifier) const;

    /// The application that a process of this program is. Of several that start the same program
    /// it is the one that menus show, with the fewest arguments, first by identifier. Shells,
    /// interpreters and launchers stand for none, since their processes say nothing.
    const Application* withExecutable(std::string_view executable) const;

   private:
    const std::vector<Application> applications_;
    std::map<std::string_view, const Application*> byIdentifier_;
    std::map<std::string_view, const Application*> byExecutable_;
  };

  explicit ApplicationCatalog(Places places) : places_(std::move(places)) {}

  std::shared_ptr<const Contents> contents();

 private:
  /// When each folder was last changed, in nanoseconds. Two values stand for a folder that is
  /// missing, and for one that was changed so shortly before it was read that its time stamp might
  /// not tell a later change.
  using Stamps = std::map<std::string, std::int64_t>;

  void load() ZARVO_REQUIRES(mutex_);

  const Places places_;
  foundation::Mutex mutex_;
  std::shared_ptr<const Contents> contents_ ZARVO_GUARDED_BY(mutex_);
  Stamps stamps_ ZARVO_GUARDED_BY(mutex_);
};

}  // namespace platform
