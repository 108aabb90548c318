#include <errno.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ProcessTable.h"
#include "platform/linux/ProcFileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using platform::ProcessTable;
using platform::ProcFileSystem;

TEST(ProcessTable, ListsTheCallerUnderItsParent) {
  const auto processes = ProcessTable::production().processes();
  ASSERT_TRUE(processes);
  EXPECT_THAT(*processes, testing::Contains(testing::AllOf(
                              testing::Field(&ProcessTable::Entry::pid, getpid()),
                              testing::Field(&ProcessTable::Entry::parent, getppid()))));
}

TEST(ProcFileSystem, TellsThatItIsNotThere) {
  const support::TemporaryFolder folder;
  for (const std::string& root : {folder.path("missing"), folder.path()}) {
    const auto pids = ProcFileSystem(root).processIdentifiers();
    ASSERT_FALSE(pids) << root;
    EXPECT_EQ(pids.error().code(), ENOENT);
  }
}

TEST(ProcFileSystem, ReadsStatusWhateverTheProgramIsCalled) {
  const std::string rest = " 7 3 3 0 -1 4194560 1 0 0 0 1 2 0 0 20 0 1 0 12345 2490368 100\n";
  for (const char* name : {"(cat)", "(a b)", "())", "(x) S 1 (y)", "(\n)"}) {
    const auto status = ProcFileSystem::parseStatus("42 " + std::string(name) + " Z" + rest);
    ASSERT_TRUE(status) << name;
    EXPECT_EQ(status->parent, 7);
    EXPECT_EQ(status->startTime, 12345u);
    EXPECT_TRUE(status->hasEnded());
  }
  for (const char* bad : {"", "42 (cat", "42 (cat) ", "42 (cat) S", "42 (cat) S 1 2 3"}) {
    EXPECT_FALSE(ProcFileSystem::parseStatus(bad)) << bad;
  }
}

}  // namespace
