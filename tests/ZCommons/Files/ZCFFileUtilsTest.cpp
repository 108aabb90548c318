#include <unistd.h>

#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZCommons/Files/ZCFFileUtils.h"
#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "platform/FileSystem.h"
#include "platform/SimulatedClock.h"
#include "tests/support/RecordingLogger.h"
#include "tests/support/TemporaryFolder.h"

using foundation::Date;
using foundation::distantFuture;
using foundation::URL;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
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

  void makeFolder(std::string_view name) const {
    EXPECT_TRUE(FileSystem::createDirectory(folder.path(name)));
  }

  /// The warnings so far, each as its line number, a blank, and its text.
  std::vector<std::string> warnings() {
    std::vector<std::string> lines;
    for (const DDLogMessage& message : logger->messages()) {
      EXPECT_EQ(message.logFlag(), DDLogFlag::warning);
      lines.push_back(foundation::format("%d %@", message.lineNumber(), message.logMsg()));
    }
    return lines;
  }

  /// The names found, relative to the folder.
  std::set<std::string> found(const char* name, std::size_t level, bool ignoreDirectory) const {
    std::set<std::string> names;
    const URL directory = URL::fileURLWithPath(folder.path(), URL::Kind::directory);
    const std::string prefix = directory.absoluteString();
    for (const URL& entry : ZCFFileUtils::findUrlByName(name, directory, level, ignoreDirectory)) {
      EXPECT_TRUE(entry.absoluteString().starts_with(prefix));
      names.insert(entry.absoluteString().substr(prefix.size()));
    }
    return names;
  }

  const support::TemporaryFolder folder;
  const std::shared_ptr<support::RecordingLogger> logger = support::RecordingLogger::add();
};

}  // namespace

TEST_F(ZCFFileUtilsTest, FindsByNameAndLevel) {
  for (const char* name : {"d", "d/e", ".h", "d/e/deep.txt.d"}) makeFolder(name);
  for (const char* name : {"a.txt", "abc", "d/b.txt", "d/e/c.txt", ".hidden.txt", ".h/x.txt"}) {
    file(name);
  }
  ASSERT_EQ(symlink(folder.path("d").c_str(), folder.path("link").c_str()), 0);
  struct Row {
    const char* name;
    std::size_t level;
    bool ignoreDirectory;
    std::set<std::string> found;
  };
  const Row rows[] = {
      {"*", 1, false, {"a.txt", "abc", "d/", "link"}},
      {"*", 1, true, {"a.txt", "abc", "link"}},
      {"*", 2, false, {"a.txt", "abc", "d/", "link", "d/b.txt", "d/e/"}},
      {"*.txt", 0, false, {"a.txt", "d/b.txt", "d/e/c.txt"}},
      {"*txt*", 0, false, {"a.txt", "d/b.txt", "d/e/c.txt", "d/e/deep.txt.d/"}},
      {"*txt*", 0, true, {"a.txt", "d/b.txt", "d/e/c.txt"}},
      {"a?c", 0, false, {"abc"}},
      {"ABC", 0, false, {}},
      {"abc", 1, false, {"abc"}},
      {"", 0, false, {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(found(row.name, row.level, row.ignoreDirectory), row.found)
        << row.name << " " << row.level << row.ignoreDirectory;
  }
  const URL root = URL::fileURLWithPath(folder.path());
  EXPECT_THAT(ZCFFileUtils::findFileByName("*.txt", root, 1), ElementsAre(url("a.txt")));
}

TEST_F(ZCFFileUtilsTest, FindsOddNames) {
  file("a\nb");
  file("\xFF");
  EXPECT_EQ(found("*", 1, false), (std::set<std::string>{"%FF"}));
  EXPECT_EQ(found("a\nb", 1, false), (std::set<std::string>{"a%0Ab"}));
  EXPECT_EQ(found("\xFF", 1, false), (std::set<std::string>{"%FF"}));
}

TEST_F(ZCFFileUtilsTest, RaisesForNoNameAndNoFolder) {
  const auto reason = [](foundation::NullableText name, const std::optional<URL>& directory) {
    try {
      ZCFFileUtils::findFileByName(name, directory, 0);
    } catch (const foundation::NSInvalidArgumentException& exception) {
      return exception.reason();
    }
    return std::string("none");
  };
  EXPECT_EQ(reason(nullptr, std::nullopt), "Method argument error: fileName");
  EXPECT_EQ(reason("*", std::nullopt), "Method argument error: directoryToScan");
  EXPECT_EQ(reason("*", web), "none");
  EXPECT_EQ(reason("*", url("missing")), "none");
}

TEST_F(ZCFFileUtilsTest, ReadsWritesTouchesAndDeletes) {
  const URL text = url("text");
  ZCFFileUtils::writeQuetly("\u00E4\n", text);
  ZCFFileUtils::writeQuetly(nullptr, text);
  EXPECT_EQ(foundation::textOf(ZCFFileUtils::readQuetlyForUrl(text).value()), "\u00E4\n");

  platform::SimulatedClock clock(foundation::Date(seconds(1'700'000'000)));
  const platform::Clock::Replacement replacement(clock);
  ZCFFileUtils::touchForUrl(text);
  const Date touched = ZCFFileUtils::fileLastWriteTimeForUrl(text);
  EXPECT_EQ(touched, clock.now());
  EXPECT_EQ(ZCFFileUtils::readQuetlyForUrl(text)->size(), 3u);
  EXPECT_TRUE(ZCFFileUtils::isFile(text, touched));
  EXPECT_TRUE(ZCFFileUtils::isFile(text, touched + seconds(1)));
  EXPECT_FALSE(ZCFFileUtils::isFile(text, touched - seconds(1)));
  EXPECT_FALSE(ZCFFileUtils::isFile(text, std::nullopt));

  ZCFFileUtils::touchForUrl(url("new"));
  EXPECT_TRUE(ZCFFileUtils::readQuetlyForUrl(url("new"))->empty());

  makeFolder("d");
  file("d/.x");
  EXPECT_TRUE(ZCFFileUtils::deleteQuetlyForUrl(url("d")));
  EXPECT_FALSE(FileSystem::exists(folder.path("d")));
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(ZCFFileUtilsTest, TellsWhenAFileWasMade) {
  const auto attributes = FileSystem::attributes(file("x").path());
  EXPECT_EQ(ZCFFileUtils::fileCreatedTimeForUrl(url("x")),
            attributes->creationDate.value_or(distantFuture));
}

TEST_F(ZCFFileUtilsTest, WarnsOfFailures) {
  const URL missing = url("missing");
  const URL inMissing = url("missing/x");
  ASSERT_EQ(symlink("nowhere", folder.path("dangling").c_str()), 0);
  EXPECT_FALSE(ZCFFileUtils::contains("a", missing));
  EXPECT_FALSE(ZCFFileUtils::contains("a", URL::fileURLWithPath(folder.path())));
  EXPECT_EQ(ZCFFileUtils::fileLastWriteTimeForUrl(missing), distantFuture);
  EXPECT_FALSE(ZCFFileUtils::isFile(missing, distantFuture));
  EXPECT_EQ(ZCFFileUtils::fileCreatedTimeForUrl(missing), distantFuture);
  EXPECT_FALSE(ZCFFileUtils::readQuetlyForUrl(missing));
  ZCFFileUtils::writeQuetly("x", inMissing);
  ZCFFileUtils::touchForUrl(inMissing);
  ZCFFileUtils::touchForUrl(url("dangling"));
  EXPECT_FALSE(ZCFFileUtils::deleteQuetlyForUrl(missing));
  const std::string name = missing.absoluteString();
  EXPECT_THAT(
      warnings(),
      ElementsAre(StartsWith("57 (ZCFFileUtils) Cannot read file contents: "),
                  StartsWith("57 (ZCFFileUtils) Cannot read file contents: "),
                  StartsWith("98 (ZCFFileUtils) Error getting time for file " + name + ": "),
                  StartsWith("98 (ZCFFileUtils) Error getting time for file " + name + ": "),
                  StartsWith("116 (ZCFFileUtils) Error getting time for file " + name + ": "),
                  StartsWith("140 (ZCFFileUtils) Error reading file " + name + ": "),
                  StartsWith("158 (ZCFFileUtils) Error writing to file " + name + "/x: "),
                  "177 (ZCFFileUtils) Error touching file " + name + "/x: Can't create empty file.",
                  "177 (ZCFFileUtils) Error touching file " + url("dangling").absoluteString() +
                      ": Can't create empty file.",
                  StartsWith("191 (ZCFFileUtils) Error deleting " + name + ": ")));
}

TEST_F(ZCFFileUtilsTest, WarnsWhenATimeCannotBeSet) {
  constexpr uid_t nobody = 65534;
  const uid_t user = geteuid();
  ASSERT_TRUE(user != 0 || seteuid(nobody) == 0);
  ZCFFileUtils::touchForUrl(URL::fileURLWithPath("/etc/passwd"));
  ASSERT_EQ(seteuid(user), 0);
  EXPECT_THAT(
      warnings(),
      ElementsAre(StartsWith("172 (ZCFFileUtils) Error touching file file:///etc/passwd: ")));
}

TEST_F(ZCFFileUtilsTest, KeepsQuietAboutOtherURLs) {
  EXPECT_FALSE(ZCFFileUtils::contains("a", web));
  EXPECT_FALSE(ZCFFileUtils::readQuetlyForUrl(web));
  EXPECT_FALSE(ZCFFileUtils::deleteQuetlyForUrl(web));
  EXPECT_FALSE(ZCFFileUtils::isFile(web, distantFuture));
  EXPECT_EQ(ZCFFileUtils::fileCreatedTimeForUrl(web), distantFuture);
  ZCFFileUtils::writeQuetly("x", web);
  EXPECT_THAT(warnings(), IsEmpty());
  EXPECT_THROW(ZCFFileUtils::fileChecksum(web), foundation::NSInvalidArgumentException);
}

TEST_F(ZCFFileUtilsTest, DigestsContents) {
  EXPECT_EQ(ZCFFileUtils::fileChecksum(file("empty")), "d41d8cd98f00b204e9800998ecf8427e");
  const std::string million(1'000'000, 'a');
  EXPECT_EQ(ZCFFileUtils::fileChecksum(file("a", million)), "7707d6ae4e027c70eea2a935c2296f21");
  EXPECT_FALSE(ZCFFileUtils::fileChecksum(url("missing")));
  EXPECT_FALSE(ZCFFileUtils::fileChecksum(URL::fileURLWithPath(folder.path())));
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(ZCFFileUtilsTest, SearchesLines) {
  const URL text = file("text", "one\r\ntw\u00F6\n" + std::string(70000, 'x') + "three");
  const std::pair<const char*, bool> rows[] = {{"one", true},   {"w\u00F6", true}, {"xthree", true},
                                               {"ONE", false},  {"e\r\nt", false}, {"", false},
                                               {nullptr, false}};
  for (const auto& [part, expected] : rows) {
    EXPECT_EQ(ZCFFileUtils::contains(part, text), expected) << (part ? part : "null");
  }
  EXPECT_THAT(warnings(), IsEmpty());
}
