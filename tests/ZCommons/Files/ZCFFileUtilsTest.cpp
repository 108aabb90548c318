#include <unistd.h>

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZCommons/Files/ZCFFileUtils.h"
#include "foundation/NSException.h"
#include "platform/FileSystem.h"
#include "platform/SimulatedClock.h"
#include "tests/support/RecordingLogger.h"
#include "tests/support/TemporaryFolder.h"

using foundation::distantFuture;
using foundation::URL;
using testing::StartsWith;
namespace FileSystem = platform::FileSystem;

namespace {

const URL web = *URL::URLWithString("http://example.com/a");

class ZCFFileUtilsTest : public testing::Test {
 protected:
  /// A file URL inside the folder; what it names is not made.
  URL url(std::string_view name) const { return URL::fileURLWithPath(folder.path(name)); }

  URL file(std::string_view name, std::string_view content = "") const {
    EXPECT_TRUE(FileSystem::writeFileAtomically(folder.path(name), foundation::dataOf(content)));
    return url(name);
  }

  /// The names found, relative to the folder.
  std::set<std::string> found(const char* name, std::size_t level, bool ignoreDirectory) const {
    std::set<std::string> names;
    const URL root = url("");
    for (const URL& entry : ZCFFileUtils::findUrlByName(name, root, level, ignoreDirectory)) {
      names.insert(entry.absoluteString().substr(root.absoluteString().size()));
    }
    return names;
  }

  const support::TemporaryFolder folder;
  const std::shared_ptr<support::RecordingLogger> logger = support::RecordingLogger::add();
};

}  // namespace

TEST_F(ZCFFileUtilsTest, FindsByNameAndLevel) {
  ASSERT_TRUE(FileSystem::createDirectory(folder.path("d/e/deep.txt.d")));
  ASSERT_TRUE(FileSystem::createDirectory(folder.path(".h")));
  for (const char* name :
       {"a.txt", "abc", "d/b.txt", "d/e/c.txt", ".hidden.txt", ".h/x.txt", "a\nb", "\xFF"}) {
    file(name);
  }
  ASSERT_EQ(symlink(folder.path("d").c_str(), folder.path("link").c_str()), 0);
  const std::tuple<const char*, std::size_t, bool, std::set<std::string>> rows[] = {
      {"*", 1, false, {"a.txt", "abc", "d/", "link", "%FF"}},
      {"*", 1, true, {"a.txt", "abc", "link", "%FF"}},
      {"*", 2, false, {"a.txt", "abc", "d/", "link", "d/b.txt", "d/e/", "%FF"}},
      {"*txt*", 0, false, {"a.txt", "d/b.txt", "d/e/c.txt", "d/e/deep.txt.d/"}},
      {"*.txt", 0, true, {"a.txt", "d/b.txt", "d/e/c.txt"}},
      {"ABC", 0, false, {}},
      {"", 0, false, {}},
      {"a\nb", 1, false, {"a%0Ab"}},
      {"\xFF", 1, false, {"%FF"}},
  };
  for (const auto& [name, level, ignoreDirectory, expected] : rows) {
    EXPECT_EQ(found(name, level, ignoreDirectory), expected) << name << " " << level;
  }
  EXPECT_TRUE(ZCFFileUtils::findFileByName("d", url(""), 1).empty());
}

TEST_F(ZCFFileUtilsTest, RaisesForMissingArguments) {
  const auto raises = [](const std::string& argument) {
    return testing::ThrowsMessage<foundation::NSInvalidArgumentException>(
        "Method argument error: " + argument);
  };
  EXPECT_THAT([] { ZCFFileUtils::findFileByName(nullptr, {}, 0); }, raises("fileName"));
  EXPECT_THAT([] { ZCFFileUtils::findFileByName("*", {}, 0); }, raises("directoryToScan"));
  EXPECT_THAT([] { ZCFFileUtils::fileChecksum(web); }, raises("fileUrl"));
}

TEST_F(ZCFFileUtilsTest, ReadsWritesTouchesAndDeletes) {
  const URL text = url("d/text");
  ASSERT_TRUE(FileSystem::createDirectory(folder.path("d")));
  ZCFFileUtils::writeQuetly("\u00E4\n", text);
  ZCFFileUtils::writeQuetly(nullptr, text);
  platform::SimulatedClock clock(foundation::Date(std::chrono::seconds(1'700'000'000)));
  const platform::Clock::Replacement replacement(clock);
  ZCFFileUtils::touchForUrl(text);
  EXPECT_EQ(foundation::textOf(ZCFFileUtils::readQuetlyForUrl(text).value()), "\u00E4\n");
  EXPECT_EQ(ZCFFileUtils::fileLastWriteTimeForUrl(text), clock.now());
  EXPECT_TRUE(ZCFFileUtils::isFile(text, clock.now()));
  EXPECT_FALSE(ZCFFileUtils::isFile(text, clock.now() - std::chrono::seconds(1)));
  EXPECT_FALSE(ZCFFileUtils::isFile(text, std::nullopt));

  ZCFFileUtils::touchForUrl(url("d/.new"));
  EXPECT_TRUE(ZCFFileUtils::readQuetlyForUrl(url("d/.new"))->empty());
  EXPECT_TRUE(ZCFFileUtils::deleteQuetlyForUrl(url("d")));
  EXPECT_FALSE(FileSystem::exists(folder.path("d")));
}

TEST_F(ZCFFileUtilsTest, WarnsOfFailuresUnlessTheURLIsNoFileURL) {
  const URL missing = url("missing");
  for (const URL& nothing : {missing, web}) {
    EXPECT_FALSE(ZCFFileUtils::contains("a", nothing));
    EXPECT_EQ(ZCFFileUtils::fileLastWriteTimeForUrl(nothing), distantFuture);
    EXPECT_FALSE(ZCFFileUtils::isFile(nothing, distantFuture));
    EXPECT_EQ(ZCFFileUtils::fileCreatedTimeForUrl(nothing), distantFuture);
    EXPECT_FALSE(ZCFFileUtils::readQuetlyForUrl(nothing));
    ZCFFileUtils::writeQuetly("x", nothing.URLByAppendingPathComponent("x"));
    EXPECT_FALSE(ZCFFileUtils::deleteQuetlyForUrl(nothing));
  }
  ZCFFileUtils::touchForUrl(web);
  EXPECT_TRUE(ZCFFileUtils::findFileByName("*", web, 0).empty());
  EXPECT_TRUE(ZCFFileUtils::findFileByName("*", missing, 0).empty());
  EXPECT_FALSE(ZCFFileUtils::fileChecksum(missing));

  constexpr uid_t nobody = 65534;
  const uid_t user = geteuid();
  ASSERT_TRUE(user != 0 || seteuid(nobody) == 0);
  ZCFFileUtils::touchForUrl(URL::fileURLWithPath("/etc/passwd"));
  ASSERT_EQ(seteuid(user), 0);

  const std::string name = missing.absoluteString();
  const auto noTime = StartsWith("2 98 (ZCFFileUtils) Error getting time for file " + name + ": ");
  const std::string notMade = "http://example.com/a: Can't create empty file.";
  EXPECT_THAT(logger->numberedLines(),
              testing::ElementsAre(
                  StartsWith("2 57 (ZCFFileUtils) Cannot read file contents: "), noTime, noTime,
                  StartsWith("2 116 (ZCFFileUtils) Error getting time for file " + name + ": "),
                  StartsWith("2 140 (ZCFFileUtils) Error reading file " + name + ": "),
                  StartsWith("2 158 (ZCFFileUtils) Error writing to file " + name + "/x: "),
                  StartsWith("2 191 (ZCFFileUtils) Error deleting " + name + ": "),
                  "2 177 (ZCFFileUtils) Error touching file " + notMade,
                  StartsWith("2 172 (ZCFFileUtils) Error touching file file:///etc/passwd: ")));
}

TEST_F(ZCFFileUtilsTest, DigestsAndSearchesContents) {
  const URL text = file("text", "one\r\ntw\u00F6\n" + std::string(70000, 'x') + "three");
  for (const char* part : {"one", "w\u00F6", "xthree"}) {
    EXPECT_TRUE(ZCFFileUtils::contains(part, text)) << part;
  }
  for (const char* part : {"ONE", "e\r\nt", ""}) {
    EXPECT_FALSE(ZCFFileUtils::contains(part, text)) << part;
  }
  EXPECT_FALSE(ZCFFileUtils::contains(nullptr, text));
  const URL million = file("a", std::string(1'000'000, 'a'));
  EXPECT_EQ(ZCFFileUtils::fileChecksum(million), "7707d6ae4e027c70eea2a935c2296f21");
  EXPECT_FALSE(ZCFFileUtils::fileChecksum(url("")));
  EXPECT_TRUE(logger->messages().empty());
  EXPECT_FALSE(ZCFFileUtils::contains("a", url("")));
  EXPECT_EQ(logger->messages().size(), 1u);
}
