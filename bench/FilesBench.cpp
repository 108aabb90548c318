#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "ZCommons/Files/ZCFFileUtils.h"
#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using foundation::URL;
using support::TemporaryFolder;

bool run(std::vector<std::string> command) {
  std::vector<char*> arguments;
  for (std::string& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  int status = -1;
  const bool ran =
      posix_spawnp(&pid, arguments[0], &actions, nullptr, arguments.data(), environ) == 0 &&
      waitpid(pid, &status, 0) == pid;
  posix_spawn_file_actions_destroy(&actions);
  return ran && status == 0;
}

// Folders of a thousand files each.
void makeTree(const std::string& path, int folders) {
  for (int i = 0; i < folders; ++i) {
    const std::string folder = path + "/folder " + std::to_string(i);
    static_cast<void>(platform::FileSystem::createDirectory(folder));
    for (int j = 0; j < 1000; ++j) {
      mknod((folder + "/file " + std::to_string(j) + ".log").c_str(), S_IFREG | 0600, 0);
    }
  }
}

constexpr int searchedFolders = 100;

const TemporaryFolder& searchedTree() {
  static const TemporaryFolder folder(TemporaryFolder::inMemory());
  [[maybe_unused]] static const bool made = (makeTree(folder.path(), searchedFolders), true);
  return folder;
}

void search(benchmark::State& state) {
  const URL directory = URL::fileURLWithPath(searchedTree().path(), URL::Kind::directory);
  for (auto _ : state) {
    const auto found = ZCFFileUtils::findUrlByName("*", directory, 0, false);
    if (found.size() != searchedFolders * 1001) state.SkipWithError("not all was found");
  }
}
BENCHMARK(search)->Unit(benchmark::kMillisecond)->UseRealTime();

void searchByFind(benchmark::State& state) {
  const std::string& directory = searchedTree().path();
  for (auto _ : state) {
    if (!run({"find", directory, "-not", "-name", ".*"})) state.SkipWithError("find failed");
  }
}
BENCHMARK(searchByFind)->Unit(benchmark::kMillisecond)->UseRealTime();

template <class Remove>
void timeRemoval(benchmark::State& state, const Remove& remove) {
  const TemporaryFolder folder(TemporaryFolder::inMemory());
  const std::string item = folder.path("item");
  for (auto _ : state) {
    makeTree(item, 50);
    const auto start = std::chrono::steady_clock::now();
    if (!remove(item)) state.SkipWithError("the removal failed");
    state.SetIterationTime(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
}

void deletion(benchmark::State& state) {
  timeRemoval(state, [](const std::string& item) {
    return ZCFFileUtils::deleteQuetlyForUrl(URL::fileURLWithPath(item, URL::Kind::directory));
  });
}
BENCHMARK(deletion)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

void deletionByRm(benchmark::State& state) {
  timeRemoval(state, [](const std::string& item) { return run({"rm", "-rf", item}); });
}
BENCHMARK(deletionByRm)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

const std::string& largeFile() {
  static const TemporaryFolder folder;
  static const std::string path = folder.path("1 GiB");
  [[maybe_unused]] static const bool made = platform::FileSystem::createFile(path) &&
                                            truncate(path.c_str(), off_t{1} << 30) == 0 &&
                                            run({"cat", path});
  return path;
}

void checksum(benchmark::State& state) {
  const URL file = URL::fileURLWithPath(largeFile());
  for (auto _ : state) {
    if (!ZCFFileUtils::fileChecksum(file)) state.SkipWithError("the file cannot be read");
  }
}
BENCHMARK(checksum)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void checksumByMd5sum(benchmark::State& state) {
  for (auto _ : state) {
    if (!run({"md5sum", largeFile()})) state.SkipWithError("md5sum failed");
  }
}
BENCHMARK(checksumByMd5sum)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

}  // namespace
