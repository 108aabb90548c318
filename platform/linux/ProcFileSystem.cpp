#include "platform/linux/ProcFileSystem.h"

#include <dirent.h>
#include <errno.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>

#include <limits.h>

#include "platform/linux/SmallFile.h"

namespace platform {
namespace {

constexpr std::size_t fileLimit = 256 * 1024;

template <class Number>
std::optional<Number> parseNumber(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::string_view takeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find_first_of(" \n"));
  text.remove_prefix(std::min(word.size() + 1, text.size()));
  return word;
}

}  // namespace

foundation::Result<std::vector<pid_t>> ProcFileSystem::processIdentifiers() const {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(root_.c_str()), closedir);
  if (!folder) return foundation::Error::posix(errno, "opendir " + root_);
  std::vector<pid_t> result;
  errno = 0;
  while (const dirent* entry = readdir(folder.get())) {
    if (const auto pid = parseNumber<pid_t>(entry->d_name)) result.push_back(*pid);
  }
  if (errno != 0) return foundation::Error::posix(errno, "readdir " + root_);
  if (result.empty()) return foundation::Error::posix(ENOENT, "processes in " + root_);
  return result;
}

std::optional<ProcFileSystem::Status> ProcFileSystem::status(pid_t pid) const {
  const std::optional<std::string> text = readSmallFile(path(pid, "stat"), fileLimit);
  return text ? parseStatus(*text) : std::nullopt;
}

std::string ProcFileSystem::controlGroups(pid_t pid) const {
  return readSmallFile(path(pid, "cgroup"), fileLimit).value_or("");
}

std::string ProcFileSystem::executable(pid_t pid) const {
  constexpr std::string_view deletedMark = " (deleted)";
  std::array<char, PATH_MAX> buffer;
  const ssize_t length = readlink(path(pid, "exe").c_str(), buffer.data(), buffer.size());
  if (length <= 0) return "";
  std::string_view target(buffer.data(), static_cast<std::size_t>(length));
  if (target.ends_with(deletedMark)) target.remove_suffix(deletedMark.size());
  return std::string(target);
}

std::optional<ProcFileSystem::Status> ProcFileSystem::parseStatus(std::string_view text) {
  const std::size_t nameEnd = text.rfind(") ");
  if (nameEnd == std::string_view::npos) return std::nullopt;
  text.remove_prefix(nameEnd + 2);
  const std::string_view state = takeWord(text);
  const auto parent = parseNumber<pid_t>(takeWord(text));
  constexpr int fieldsBetween = 17;  // from the process group to the field before the start time
  for (int i = 0; i < fieldsBetween; ++i) takeWord(text);
  const auto startTime = parseNumber<std::uint64_t>(takeWord(text));
  if (state.size() != 1 || !parent || !startTime) return std::nullopt;
  return Status{state[0], *parent, *startTime};
}

std::string ProcFileSystem::path(pid_t pid, std::string_view file) const {
  std::string result = root_;
  result += '/';
  result += std::to_string(pid);
  result += '/';
  result += file;
  return result;
}

}  // namespace platform
