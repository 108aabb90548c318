#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/FileSystem.h"
#include "platform/SimulatedClock.h"
#include "platform/Workspace.h"
#include "platform/linux/DesktopWorkspace.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using platform::DesktopWorkspace;
using platform::RunningApplicationRef;
using platform::RunningApplicationsChange;
namespace FileSystem = platform::FileSystem;

void write(const std::string& path, const std::string& text) {
  ASSERT_TRUE(FileSystem::createDirectory(path.substr(0, path.rfind('/'))));
  ASSERT_TRUE(FileSystem::writeFileAtomically(path, foundation::dataOf(text)));
}

std::string describe(const std::vector<RunningApplicationRef>& list) {
  std::string text;
  for (const auto& app : list) {
    text += *app->bundleIdentifier + ":" + std::to_string(app->processIdentifier) + " ";
  }
  return text;
}

/// Keeps changes as texts ("+0,2 a:1 b:3 ") and lets a test wait for the next.
class Recorder {
 public:
  void take(const RunningApplicationsChange& change) {
    const bool removal = change.kind == RunningApplicationsChange::Kind::removal;
    std::string text = removal ? "-" : "+";
    for (const std::size_t index : change.indexes) text += std::to_string(index) + ",";
    text.back() = ' ';
    text += describe(removal ? change.oldRecords : change.newRecords);
    const foundation::MutexLock lock(mutex_);
    changes_.push_back(text);
    arrived_.notifyAll();
  }

  std::string next() {
    const foundation::MutexLock lock(mutex_);
    while (changes_.size() == taken_) {
      if (!arrived_.waitFor(mutex_, std::chrono::seconds(30))) return "nothing came";
    }
    return changes_[taken_++];
  }

 private:
  foundation::Mutex mutex_;
  foundation::Condition arrived_;
  std::vector<std::string> changes_ ZARVO_GUARDED_BY(mutex_);
  std::size_t taken_ ZARVO_GUARDED_BY(mutex_) = 0;
};

/// A desktop of files: entries, programs and processes. The process numbers are above those that
/// the kernel gives.
class WorkspaceTest : public testing::Test {
 protected:
  static constexpr pid_t base = 5000000;

  void addProgram(const std::string& name) {
    write(programs_ + "/" + name, "");
    chmod((programs_ + "/" + name).c_str(), 0755);
  }

  void addEntry(const std::string& name, const std::string& lines, const char* where = "/own") {
    write(folder_.path() + where + "/" + name + ".desktop",
          "[Desktop Entry]\nType=Application\n" + lines);
  }

  void addProcess(int number, int parent, int startTime, const std::string& program,
                  const std::string& scope = "") {
    const std::string process = processPath(number);
    write(process + "/stat",
          std::to_string(base + number) + " (x) S " + std::to_string(base + parent) +
              " 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 " + std::to_string(startTime) + " 0 0\n");
    write(process + "/cgroup", "0::/user.slice/" + scope + "\n");
    ASSERT_EQ(symlink((programs_ + "/" + program).c_str(), (process + "/exe").c_str()), 0);
  }

  void removeProcess(int number) { ASSERT_TRUE(FileSystem::removeItem(processPath(number))); }

  RunningApplicationRef applicationOf(int number) {
    return workspace().runningApplicationWithProcessIdentifier(base + number);
  }

  foundation::Observation observe(const std::shared_ptr<Recorder>& recorder) {
    return workspace().observeRunningApplications([recorder](const auto& c) { recorder->take(c); });
  }

  DesktopWorkspace& workspace() {
    if (!workspace_) {
      workspace_.emplace(
          platform::ApplicationCatalog::Places{
              {folder_.path("own"), folder_.path("system")}, {programs_}, {"de"}},
          platform::ProcFileSystem(folder_.path("proc")));
    }
    return *workspace_;
  }

  std::string processPath(int number) const {
    return folder_.path("proc/" + std::to_string(base + number));
  }

  support::TemporaryFolder folder_;
  const std::string programs_ = folder_.path("bin");
  std::optional<DesktopWorkspace> workspace_;
};

TEST_F(WorkspaceTest, KnowsApplicationsByScopeAndProgram) {
  for (const char* program : {"edit", "paint", "python3.11"}) addProgram(program);
  addEntry("org.example.Edit", "Name=Editor\nName[de]=Schreiber\nExec=edit %F\n");
  addEntry("org.example.EditPrivate", "Name=Private\nExec=edit --private\n");
  addEntry("sub/paint", "Exec=env A=b paint %U\n");
  addEntry("script", "Name=Script\nExec=python3.11 script.py\n");
  addEntry("gone", "Name=Gone\nExec=paint\nTryExec=missing\n");
  addEntry("masked", "Hidden=true\n");
  addEntry("masked", "Name=Masked\nExec=paint\n", "/system");

  addProcess(1, 0, 10, "init");
  addProcess(2, 1, 90, "edit");                              // by its program,
  addProcess(3, 2, 91, "edit");                              // whose children are the same run
  addProcess(4, 1, 50, "python3.11", "app-script-1.scope");  // by its scope, the oldest,
  addProcess(5, 4, 60, "paint", "app-script-1.scope");       // whatever others run there,
  addProcess(6, 1, 70, "edit", "app-script-1.scope");        // also when their parent has ended
  addProcess(7, 1, 40, "paint", "app-masked-2.scope");       // a hidden entry is none
  addProcess(8, 1, 30, "python3.11");                        // an interpreter says nothing

  EXPECT_EQ(describe(workspace().runningApplications()),
            "sub-paint:5000007 script:5000004 org.example.Edit:5000002 ");
  for (const int number : {1, 3, 5, 6, 8, 9}) EXPECT_EQ(applicationOf(number), nullptr) << number;
  ASSERT_NE(applicationOf(2), nullptr);
  EXPECT_EQ(applicationOf(2)->localizedName, "Schreiber");
  EXPECT_EQ(applicationOf(7)->localizedName, std::nullopt);
  EXPECT_EQ(applicationOf(4)->bundleIdentifier, "script");

  EXPECT_EQ(workspace().URLForApplicationWithBundleIdentifier("sub-paint")->path(),
            folder_.path("own/sub/paint.desktop"));
  for (const char* identifier : {"gone", "masked", "", "nothing"}) {
    EXPECT_FALSE(workspace().URLForApplicationWithBundleIdentifier(identifier)) << identifier;
  }
  addEntry("later", "Name=Later\n");
  EXPECT_TRUE(workspace().URLForApplicationWithBundleIdentifier("later"));
}

TEST_F(WorkspaceTest, TellsChangesWithTheirPositions) {
  platform::SimulatedClock clock(foundation::Date{});
  const platform::Clock::Replacement replacement(clock);
  addProgram("edit");
  addEntry("edit", "Exec=edit\n");
  addProcess(1, 0, 10, "init");
  addProcess(2, 1, 20, "edit");
  addProcess(4, 1, 40, "edit");
  EXPECT_EQ(describe(workspace().runningApplications()), "edit:5000002 edit:5000004 ");

  addProcess(6, 1, 60, "edit");  // between taking the list and observing
  const auto recorder = std::make_shared<Recorder>();
  auto observation = observe(recorder);
  EXPECT_EQ(recorder->next(), "+2 edit:5000006 ");

  addProcess(3, 1, 30, "edit");  // came to be an application late
  addProcess(5, 1, 50, "edit");
  clock.advance(1);
  EXPECT_EQ(recorder->next(), "+1,3 edit:5000003 edit:5000005 ");
  removeProcess(2);
  removeProcess(5);
  removeProcess(6);
  addProcess(6, 1, 61, "edit");  // another process of the same number
  clock.advance(1);
  EXPECT_EQ(recorder->next(), "-0,3,4 edit:5000002 edit:5000005 edit:5000006 ");
  EXPECT_EQ(recorder->next(), "+2 edit:5000006 ");
  EXPECT_EQ(describe(workspace().runningApplications()), "edit:5000003 edit:5000004 edit:5000006 ");

  // One that somebody asked for is in the list, though it ends before the next look.
  addProcess(7, 1, 70, "edit");
  const RunningApplicationRef asked = applicationOf(7);
  removeProcess(7);
  ASSERT_NE(asked, nullptr);
  EXPECT_EQ(recorder->next(), "+3 edit:5000007 ");
  clock.advance(1);
  EXPECT_EQ(recorder->next(), "-3 edit:5000007 ");

  observation.stop();
  removeProcess(3);
  clock.advance(2);
  EXPECT_EQ(describe(workspace().runningApplications()), "edit:5000004 edit:5000006 ");
  observation = observe(recorder);
  removeProcess(4);
  clock.advance(1);
  EXPECT_EQ(recorder->next(), "-0 edit:5000004 ");
}

TEST_F(WorkspaceTest, ReportsARealApplicationThatIsLaunchedAndEnds) {
  platform::SimulatedClock clock(foundation::Date{});
  const platform::Clock::Replacement replacement(clock);
  const std::string program = folder_.path("sleeper");
  write(program, std::string(foundation::textOf(*FileSystem::readFile("/bin/sleep"))));
  chmod(program.c_str(), 0755);
  addEntry("sleeper", "Name=Sleeper\nExec=\"" + program + "\" 1000\n");
  DesktopWorkspace workspace({{folder_.path("own")}, {}, {}});
  const auto recorder = std::make_shared<Recorder>();
  const auto observation =
      workspace.observeRunningApplications([recorder](const auto& c) { recorder->take(c); });

  pid_t pid = 0;
  std::string name = "other", argument = "1000";
  char* const arguments[] = {name.data(), argument.data(), nullptr};
  ASSERT_EQ(posix_spawn(&pid, program.c_str(), nullptr, nullptr, arguments, environ), 0);
  clock.advance(1);
  EXPECT_EQ(recorder->next(), "+0 sleeper:" + std::to_string(pid) + " ");
  EXPECT_EQ(workspace.runningApplicationWithProcessIdentifier(pid)->localizedName, "Sleeper");
  kill(pid, SIGKILL);  // the clock stands still: the end reports itself, though nobody has waited
  EXPECT_EQ(recorder->next(), "-0 sleeper:" + std::to_string(pid) + " ");
  EXPECT_EQ(workspace.runningApplicationWithProcessIdentifier(pid), nullptr);
  waitpid(pid, nullptr, 0);
}

TEST_F(WorkspaceTest, ObserversComeAndGoWhileApplicationsDo) {
  addProgram("edit");
  addEntry("edit", "Exec=edit\n");
  addProcess(1, 0, 10, "edit");
  workspace();
  std::vector<std::thread> threads;
  for (int i = 2; i < 5; ++i) {
    threads.emplace_back([this, i] {
      for (int round = 0; round < 50; ++round) {
        const auto observation = observe(std::make_shared<Recorder>());
        addProcess(i, 0, i, "edit");
        EXPECT_NE(applicationOf(i), nullptr);
        removeProcess(i);
        EXPECT_GE(workspace().runningApplications().size(), 1u);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// The variables move the look-up for an ordinary user, and for no one with more rights.
TEST_F(WorkspaceTest, ObeysTheEnvironmentOfOrdinaryUsersOnly) {
  addEntry("applications/org.example.Own", "Name=Own\n", "/data");
  chmod(folder_.path().c_str(), 0755);
  const auto isFound = [this](uid_t user) {
    const pid_t pid = fork();
    if (pid == 0) {
      setenv("XDG_DATA_HOME", folder_.path("data").c_str(), 1);
      if (setresuid(user, user, user) != 0) _exit(2);
      _exit(
          platform::Workspace::production().URLForApplicationWithBundleIdentifier("org.example.Own")
              ? 1
              : 0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WEXITSTATUS(status);
  };
  EXPECT_EQ(isFound(geteuid() == 0 ? 65534 : geteuid()), 1);
  if (geteuid() == 0) {
    EXPECT_EQ(isFound(0), 0);
  }
}

}  // namespace
