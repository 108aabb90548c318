#include "platform/linux/ApplicationCatalog.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <tuple>

#include <limits.h>

#include "platform/FileSystem.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/SmallFile.h"

namespace platform {
namespace {

constexpr std::size_t entryLimit = 1024 * 1024;
constexpr std::string_view entrySuffix = ".desktop";

std::string_view lastComponent(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

constexpr std::int64_t missing = 0;
constexpr std::int64_t unsettled = -1;

std::int64_t stampOf(const std::string& folder) {
  constexpr std::int64_t settlingTime = 1'000'000'000;
  struct stat status {};
  if (stat(folder.c_str(), &status) != 0) return missing;
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const std::int64_t changed = nanoseconds(status.st_mtim);
  const std::int64_t age = nanoseconds(now) - changed;
  return age >= 0 && age < settlingTime ? unsettled : changed;
}

/// The real path of an executable file; empty when it is none.
std::string realExecutable(const std::string& path) {
  std::array<char, PATH_MAX> buffer;
  struct stat status {};
  if (!realpath(path.c_str(), buffer.data()) || stat(buffer.data(), &status) != 0) return "";
  return S_ISREG(status.st_mode) && access(buffer.data(), X_OK) == 0 ? buffer.data() : "";
}

std::string findProgram(const std::string& program, const std::vector<std::string>& searchPath) {
  if (program.starts_with('/')) return realExecutable(program);
  if (program.empty() || program.find('/') != std::string::npos) return "";
  for (const std::string& folder : searchPath) {
    std::string path = folder;
    (path += '/') += program;
    std::string found = realExecutable(path);
    if (!found.empty()) return found;
  }
  return "";
}

/// Whether many applications run this program, so that it identifies none.
bool isSharedProgram(std::string_view executable) {
  static constexpr std::string_view names[] = {
      "ash",  "bash",  "busybox", "bwrap",  "csh",   "dash",   "dotnet",      "electron",
      "env",  "fish",  "flatpak", "gjs",    "gksu",  "guile",  "java",        "ksh",
      "lua",  "mono",  "node",    "perl",   "php",   "pkexec", "python",      "ruby",
      "sh",   "snap",  "sudo",    "su",     "tclsh", "tcsh",   "wine",        "wine64",
      "wish", "xterm", "zsh",     "toybox", "deno",  "nodejs", "dbus-launch", "systemd-run"};
  std::string_view name = lastComponent(executable);
  if (std::find(std::begin(names), std::end(names), name) != std::end(names)) return true;
  // "python3.11", "lua5.4"
  name = name.substr(0, name.find_last_not_of("0123456789.-") + 1);
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/// Where the program stands in a command: behind "env" with its options and assignments, if any.
std::size_t programIndex(const std::vector<std::string>& command) {
  if (command.empty() || lastComponent(command[0]) != "env") return 0;
  std::size_t index = 1;
  while (index < command.size() &&
         (command[index].starts_with('-') || command[index].find('=') != std::string::npos)) {
    ++index;
  }
  return index;
}

bool isFieldCode(const std::string& word) { return word.size() == 2 && word[0] == '%'; }

/// "sub/folder/x.desktop" below `folder` is "sub-folder-x".
std::string identifierOf(std::string_view path, std::string_view folder) {
  path.remove_prefix(folder.size());
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  path.remove_suffix(entrySuffix.size());
  std::string identifier(path);
  std::replace(identifier.begin(), identifier.end(), '/', '-');
  return identifier;
}

/// Reads one entry; nothing when it is no application, or one that is not installed.
std::optional<Application> readApplication(std::string identifier, std::string path,
                                           const ApplicationCatalog::Places& places) {
  const std::optional<std::string> text = readSmallFile(path, entryLimit);
  if (!text) return std::nullopt;
  DesktopEntry entry = DesktopEntry::parse(*text, places.localeKeys);
  if (!entry.isApplication || entry.hidden) return std::nullopt;
  if (!entry.tryExec.empty() && findProgram(entry.tryExec, places.searchPath).empty()) {
    return std::nullopt;
  }
  Application application{
      std::move(identifier), std::move(entry.name), std::move(path), "", entry.noDisplay, 0};
  const std::size_t program = programIndex(entry.command);
  if (program < entry.command.size()) {
    application.executable = findProgram(entry.command[program], places.searchPath);
    application.argumentCount = static_cast<std::size_t>(
        std::count_if(entry.command.begin() + static_cast<std::ptrdiff_t>(program) + 1,
                      entry.command.end(), [](const auto& word) { return !isFieldCode(word); }));
  }
  if (isSharedProgram(application.executable)) application.executable.clear();
  return application;
}

}  // namespace

ApplicationCatalog::Contents::Contents(std::vector<Application> applications)
    : applications_(std::move(applications)) {
  const auto preference = [](const Application& application) {
    return std::tie(application.noDisplay, application.argumentCount, application.identifier);
  };
  for (const Application& application : applications_) {
    byIdentifier_.emplace(application.identifier, &application);
    if (application.executable.empty()) continue;
    const Application*& place = byExecutable_[application.executable];
    if (!place || preference(application) < preference(*place)) place = &application;
  }
}

const Application* ApplicationCatalog::Contents::withIdentifier(std::string_view identifier) const {
  const auto found = byIdentifier_.find(identifier);
  return found == byIdentifier_.end() ? nullptr : found->second;
}

const Application* ApplicationCatalog::Contents::withExecutable(std::string_view executable) const {
  const auto found = byExecutable_.find(executable);
  return found == byExecutable_.end() ? nullptr : found->second;
}

std::shared_ptr<const ApplicationCatalog::Contents> ApplicationCatalog::contents() {
  foundation::MutexLock lock(mutex_);
  const bool current = contents_ && std::all_of(stamps_.begin(), stamps_.end(), [](const auto& e) {
                         return e.second != unsettled && e.second == stampOf(e.first);
                       });
  if (!current) load();
  return contents_;
}

void ApplicationCatalog::load() {
  stamps_.clear();
  std::map<std::string, std::optional<Application>> found;  // what is hidden hides those behind it
  for (const std::string& folder : places_.folders) {
    stamps_[folder] = stampOf(folder);
    DirectoryEnumerator entries(folder);
    while (entries.next()) {
      std::string path(entries.path());
      if (entries.isDirectory()) {
        const std::int64_t stamp = stampOf(path);
        stamps_.emplace(std::move(path), stamp);
        continue;
      }
      if (!path.ends_with(entrySuffix)) continue;
      std::string identifier = identifierOf(path, folder);
      if (found.contains(identifier)) continue;
      found.emplace(identifier, readApplication(identifier, std::move(path), places_));
    }
  }
  std::vector<Application> applications;
  for (auto& [identifier, application] : found) {
    if (application) applications.push_back(std::move(*application));
  }
  contents_ = std::make_shared<const Contents>(std::move(applications));
}

}  // namespace platform
