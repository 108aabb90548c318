#include "platform/linux/ApplicationProcesses.h"

#include <algorithm>

#include "platform/linux/ControlGroup.h"

namespace platform {

std::vector<ApplicationProcess> ApplicationProcesses::all() {
  const auto contents = catalog_.contents();
  const Members found = members(*contents);
  std::vector<ApplicationProcess> result;
  for (const Member* first : firstOfEachRun(found)) result.push_back(process(*first));
  std::sort(result.begin(), result.end(),
            [](const auto& a, const auto& b) { return a.identity < b.identity; });
  return result;
}

std::optional<ApplicationProcess> ApplicationProcesses::withProcessIdentifier(pid_t pid) {
  const auto contents = catalog_.contents();
  const std::optional<Member> found = member(pid, *contents);
  if (!found) return std::nullopt;
  const std::optional<Member> parent = member(found->parent, *contents);
  if (parent && sameRun(*found, *parent)) return std::nullopt;
  if (found->scope.empty()) return process(*found);

  // A scope may hold processes whose parents have ended: only a look at all of them tells.
  const Members others = members(*contents);
  const auto isOlder = [&](const auto& entry) {
    return sameRun(entry.second, *found) && entry.second.identity < found->identity;
  };
  if (std::any_of(others.begin(), others.end(), isOlder)) return std::nullopt;
  return process(*found);
}

std::optional<ApplicationProcesses::Member> ApplicationProcesses::member(
    pid_t pid, const Contents& contents) const {
  const Application* application = nullptr;
  std::string scopePath;
  for (ApplicationScope& scope : applicationScopes(processes_.controlGroups(pid))) {
    for (const std::string& identifier : scope.identifiers) {
      if (!application) application = contents.withIdentifier(identifier);
    }
    if (!application) continue;
    scopePath = std::move(scope.path);
    break;
  }
  if (!application) application = contents.withExecutable(processes_.executable(pid));
  if (!application) return std::nullopt;

  const auto status = processes_.status(pid);
  if (!status || status->hasEnded()) return std::nullopt;
  return Member{{status->startTime, pid}, status->parent, application, std::move(scopePath)};
}

ApplicationProcesses::Members ApplicationProcesses::members(const Contents& contents) const {
  Members result;
  const auto pids = processes_.processIdentifiers();
  if (!pids) return result;
  for (const pid_t pid : *pids) {
    if (auto found = member(pid, contents)) result.emplace(pid, std::move(*found));
  }
  return result;
}

std::vector<const ApplicationProcesses::Member*> ApplicationProcesses::firstOfEachRun(
    const Members& members) {
  std::vector<const Member*> result;
  std::map<std::string_view, const Member*> oldestInScope;
  for (const auto& [pid, member] : members) {
    if (!member.scope.empty()) {
      const Member*& oldest = oldestInScope[member.scope];
      if (!oldest || member.identity < oldest->identity) oldest = &member;
      continue;
    }
    const auto parent = members.find(member.parent);
    if (parent == members.end() || !sameRun(member, parent->second)) result.push_back(&member);
  }
  for (const auto& [scope, oldest] : oldestInScope) result.push_back(oldest);
  return result;
}

bool ApplicationProcesses::sameRun(const Member& a, const Member& b) {
  return a.application == b.application && a.scope == b.scope;
}

ApplicationProcess ApplicationProcesses::process(const Member& member) {
  return {member.identity,
          std::make_shared<const RunningApplication>(RunningApplication{
              member.identity.pid, member.application->identifier, member.application->name})};
}

}  // namespace platform
