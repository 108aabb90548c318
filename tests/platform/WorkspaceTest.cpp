#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include <gtest/gtest.h>

#include "foundation/Format.h"
#include "platform/FileSystem.h"
#include "platform/Semaphore.h"
#include "platform/SimulatedClock.h"
#include "platform/linux/DesktopWorkspace.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using platform::DesktopWorkspace;
using platform::RunningApplicationsChange;
namespace FileSystem = platform::FileSystem;

std::string describe(const std::vector<platform::RunningApplicationRef>& list) {
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
    const bool isRemoval = change.kind == RunningApplicationsChange::Kind::removal;
    std::string text = isRemoval ? "-" : "+";
    for (const std::size_t index : change.indexes) text += std::to_string(index) + ",";
    text.back() = ' ';
    const foundation::MutexLock lock(mutex_);
    changes_.push_back(text + describe(isRemoval ? change.oldRecords : change.newRecords));
    arrived_.signal();
  }

  std::string next() {
    if (!arrived_.wait(std::chrono::seconds(30))) return "nothing came";
    const foundation::MutexLock lock(mutex_);
    return changes_[taken_++];
  }

 private:
  platform::Semaphore arrived_{0};
  foundation::Mutex mutex_;
  std::vector<std::string> changes_ ZARVO_GUARDED_BY(mutex_);
  std::size_t taken_ ZARVO_GUARDED_BY(mutex_) = 0;
};

/// A desktop of files: entries, programs and processes. The process numbers are above those that
/// the kernel gives.
class WorkspaceTest : public testing::Test {
 protected:
  static constexpr pid_t base = 5000000;

  void write(const std::string& name, std::string_view content) {
    const std::string path = folder_.path(name);
    ASSERT_TRUE(FileSystem::createDirectory(path.substr(0, path.rfind('/'))));
    ASSERT_TRUE(FileSystem::writeFileAtomically(path, foundation::dataOf(content)));
    chmod(path.c_str(), 0755);
  }

  void addEntry(const std::string& name, const std::string& lines) {
    write(name + ".desktop", "[Desktop Entry]\nType=Application\n" + lines);
  }

  void addEditor() {
    write("bin/edit", "");
    addEntry("own/edit", "Exec=edit\n");
  }

  void addProcess(int number, int startTime, int parent = 0, const std::string& program = "edit",
                  const std::string& scope = "") {
    const std::string process = "proc/" + std::to_string(base + number);
    write(process + "/stat",
          foundation::format("1 (x) S %d 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 %d 0 0\n",
                             base + parent, startTime));
    write(process + "/cgroup", "0::/user.slice/" + scope + "\n");
    ASSERT_EQ(
        symlink(folder_.path("bin/" + program).c_str(), folder_.path(process + "/exe").c_str()), 0);
  }

  void removeProcess(int number) {
    ASSERT_TRUE(FileSystem::removeItem(folder_.path("proc/" + std::to_string(base + number))));
  }

  platform::RunningApplicationRef applicationOf(int number) {
    return workspace_.runningApplicationWithProcessIdentifier(base + number);
  }

  std::string running() { return describe(workspace_.runningApplications()); }

  foundation::Observation observe(DesktopWorkspace& workspace) {
    return workspace.observeRunningApplications(
        [recorder = recorder_](const auto& change) { recorder->take(change); });
  }

  const support::TemporaryFolder folder_;
  const platform::ApplicationCatalog::Places places_{
      {folder_.path("own"), folder_.path("system")}, {folder_.path("bin")}, {"de"}};
  const std::shared_ptr<Recorder> recorder_ = std::make_shared<Recorder>();
  platform::SimulatedClock clock_{foundation::Date{}};
  const platform::Clock::Replacement replacement_{clock_};
  DesktopWorkspace workspace_{places_, platform::ProcFileSystem(folder_.path("proc"))};
};

TEST_F(WorkspaceTest, KnowsApplicationsByScopeAndProgram) {
  for (const char* program : {"bin/edit", "bin/paint", "bin/python3.11"}) write(program, "");
  addEntry("own/org.example.Edit", "Name=Editor\nName[de]=Schreiber\nExec=edit %F\n");
  addEntry("own/org.example.EditPrivate", "Name=Private\nExec=edit --private\n");
  addEntry("own/sub/paint", "Exec=env A=b paint %U\n");
  addEntry("own/script", "Name=Script\nExec=python3.11 script.py\n");
  addEntry("own/gone", "Name=Gone\nExec=paint\nTryExec=missing\n");
  addEntry("own/masked", "Hidden=true\n");
  addEntry("system/masked", "Name=Masked\nExec=paint\n");

  addProcess(1, 10, 0, "init");
  addProcess(2, 90, 1, "edit");                              // by its program,
  addProcess(3, 91, 2, "edit");                              // whose children are the same run
  addProcess(4, 50, 1, "python3.11", "app-script-1.scope");  // by its scope, the oldest,
  addProcess(5, 60, 4, "paint", "app-script-1.scope");       // whatever others run there,
  addProcess(6, 70, 1, "edit", "app-script-1.scope");        // also when their parent has ended
  addProcess(7, 40, 1, "paint", "app-masked-2.scope");       // a hidden entry is none
  addProcess(8, 30, 1, "python3.11");                        // an interpreter says nothing

  EXPECT_EQ(running(), "sub-paint:5000007 script:5000004 org.example.Edit:5000002 ");
  for (const int number : {1, 3, 5, 6, 8, 9}) EXPECT_EQ(applicationOf(number), nullptr) << number;
  EXPECT_EQ(applicationOf(2)->localizedName, "Schreiber");
  EXPECT_EQ(applicationOf(7)->localizedName, std::nullopt);

  EXPECT_EQ(workspace_.URLForApplicationWithBundleIdentifier("sub-paint")->path(),
            folder_.path("own/sub/paint.desktop"));
  for (const char* identifier : {"gone", "masked", "", "later"}) {
    EXPECT_FALSE(workspace_.URLForApplicationWithBundleIdentifier(identifier)) << identifier;
  }
  addEntry("own/later", "Name=Later\n");
  EXPECT_TRUE(workspace_.URLForApplicationWithBundleIdentifier("later"));
}

TEST_F(WorkspaceTest, TellsChangesWithTheirPositions) {
  addEditor();
  for (const int number : {2, 4}) addProcess(number, 10 * number);
  EXPECT_EQ(running(), "edit:5000002 edit:5000004 ");
  addProcess(6, 60);  // between taking the list and observing
  auto observation = observe(workspace_);
  EXPECT_EQ(recorder_->next(), "+2 edit:5000006 ");

  for (const int number : {3, 5}) addProcess(number, 10 * number);
  clock_.advance(1);
  EXPECT_EQ(recorder_->next(), "+1,3 edit:5000003 edit:5000005 ");
  for (const int number : {2, 5, 6}) removeProcess(number);
  addProcess(6, 61);  // another process of the same number
  clock_.advance(1);
  EXPECT_EQ(recorder_->next(), "-0,3,4 edit:5000002 edit:5000005 edit:5000006 ");
  EXPECT_EQ(recorder_->next(), "+2 edit:5000006 ");
  EXPECT_EQ(running(), "edit:5000003 edit:5000004 edit:5000006 ");

  // One that somebody asked for is in the list, though it ends before the next look.
  addProcess(7, 70);
  EXPECT_NE(applicationOf(7), nullptr);
  removeProcess(7);
  EXPECT_EQ(recorder_->next(), "+3 edit:5000007 ");
  clock_.advance(1);
  EXPECT_EQ(recorder_->next(), "-3 edit:5000007 ");

  observation.stop();
  removeProcess(3);
  EXPECT_EQ(running(), "edit:5000004 edit:5000006 ");
  observation = observe(workspace_);
  removeProcess(4);
  clock_.advance(1);
  EXPECT_EQ(recorder_->next(), "-0 edit:5000004 ");
}

TEST_F(WorkspaceTest, ReportsARealApplicationThatIsLaunchedAndEnds) {
  write("bin/sleeper", foundation::textOf(*FileSystem::readFile("/bin/sleep")));
  addEntry("own/sleeper", "Name=Sleeper\nExec=sleeper 1000\n");
  DesktopWorkspace workspace(places_);
  const auto observation = observe(workspace);

  const std::string program = folder_.path("bin/sleeper");
  char name[] = "other";
  char seconds[] = "1000";
  char* const arguments[] = {name, seconds, nullptr};
  pid_t pid = -1;  // runs the program already when the call returns, unlike after a fork
  ASSERT_EQ(posix_spawn(&pid, program.c_str(), nullptr, nullptr, arguments, environ), 0);
  clock_.advance(1);
  EXPECT_EQ(recorder_->next(), "+0 sleeper:" + std::to_string(pid) + " ");
  EXPECT_EQ(workspace.runningApplicationWithProcessIdentifier(pid)->localizedName, "Sleeper");
  kill(pid, SIGKILL);  // the clock stands still: the end reports itself, though nobody has waited
  EXPECT_EQ(recorder_->next(), "-0 sleeper:" + std::to_string(pid) + " ");
  EXPECT_EQ(workspace.runningApplicationWithProcessIdentifier(pid), nullptr);
  waitpid(pid, nullptr, 0);
}

TEST_F(WorkspaceTest, ObserversComeAndGoWhileApplicationsDo) {
  addEditor();
  addProcess(1, 10);
  std::vector<std::thread> threads;
  for (int number = 2; number < 5; ++number) {
    threads.emplace_back([this, number] {
      for (int round = 0; round < 50; ++round) {
        const auto observation = observe(workspace_);
        addProcess(number, number);
        EXPECT_NE(applicationOf(number), nullptr);
        removeProcess(number);
        EXPECT_NE(running(), "");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// The variables move the look-up for an ordinary user, and for no one with more rights.
TEST_F(WorkspaceTest, ObeysTheEnvironmentOfOrdinaryUsersOnly) {
  addEntry("data/applications/mine", "Name=Mine\n");
  chmod(folder_.path().c_str(), 0755);
  const auto lookUpAs = [this](uid_t user) {
    setenv("XDG_DATA_DIRS", folder_.path("data").c_str(), 1);
    if (setresuid(user, user, user) != 0) _exit(2);
    _exit(platform::Workspace::production().URLForApplicationWithBundleIdentifier("mine") ? 0 : 1);
  };
  const uid_t user = geteuid();
  EXPECT_EXIT(lookUpAs(user == 0 ? 65534 : user), testing::ExitedWithCode(0), "");
  if (user != 0) return;
  EXPECT_EXIT(lookUpAs(0), testing::ExitedWithCode(1), "");
}

}  // namespace
