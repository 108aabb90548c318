#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "ZCommons/System/NSWorkspaceUtils.h"
#include "ZCommons/System/ZCSSystemUtils.h"
#include "platform/ProcessTable.h"
#include "platform/Task.h"
#include "platform/Workspace.h"

namespace {

/// A process that holds much memory, which a start by copying page tables would pay for.
void holdMemory() {
  constexpr std::size_t oneGiB = std::size_t{1} << 30;
  static std::vector<char>& memory = *new std::vector<char>(oneGiB, 'x');
  benchmark::DoNotOptimize(memory.data());
}

constexpr const char* program = "/bin/echo";

void childWithOutput(benchmark::State& state) {
  holdMemory();
  const platform::Task task{program, {"some", "output"}, ""};
  foundation::Data output;
  for (auto _ : state) {
    benchmark::DoNotOptimize(platform::TaskRunner::production().runCapturingOutput(task, output));
  }
}
BENCHMARK(childWithOutput)->UseRealTime()->Repetitions(9)->ReportAggregatesOnly();

/// The same by hand, with nothing that is not needed.
void childWithOutputByPosixSpawn(benchmark::State& state) {
  holdMemory();
  std::array<char, 64 * 1024> buffer;
  std::array<std::string, 3> words = {program, "some", "output"};
  char* const arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  for (auto _ : state) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return state.SkipWithError("pipe2");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    pid_t pid = 0;
    if (posix_spawn(&pid, program, &actions, nullptr, arguments, environ) != 0) {
      return state.SkipWithError("posix_spawn");
    }
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    while (read(ends[0], buffer.data(), buffer.size()) > 0) {
    }
    close(ends[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    benchmark::DoNotOptimize(status);
  }
}
BENCHMARK(childWithOutputByPosixSpawn)->UseRealTime()->Repetitions(9)->ReportAggregatesOnly();

void processTable(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(platform::ProcessTable::production().processes());
  }
}
BENCHMARK(processTable);

/// The look through all processes that an observed workspace takes about once a second.
void runningApplications(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(platform::Workspace::production().runningApplications());
  }
}
BENCHMARK(runningApplications);

void applicationOfAProcessThatIsNone(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSWorkspaceUtils::bundleIdentifierByPid(getpid()));
  }
}
BENCHMARK(applicationOfAProcessThatIsNone);

void createUUID(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ZCSSystemUtils::createUUID());
}
BENCHMARK(createUUID);

}  // namespace
