#include <string>

#include <gtest/gtest.h>

#include "ZCommons/Files/ZCFFileReader.h"
#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

TEST(ZCFFileReader, GivesTheFileInPiecesOfAnySize) {
  const support::TemporaryFolder folder;
  std::string content;
  for (int i = 0; i < 30000; ++i) content += std::to_string(i);
  const std::string path = folder.path("file");
  ASSERT_TRUE(platform::FileSystem::writeFileAtomically(path, foundation::dataOf(content)));
  for (const std::size_t size : {std::size_t{1}, std::size_t{4096}, content.size()}) {
    const auto reader = ZCFFileReader::openForReading(path);
    ASSERT_TRUE(reader);
    ZCIOStream stream(*reader);
    foundation::Data buffer(size);
    std::string read;
    std::int64_t count = 0;
    while ((count = stream.read(buffer.data(), size)) > 0) {
      read += foundation::textOf(buffer).substr(0, static_cast<std::size_t>(count));
    }
    EXPECT_EQ(count, 0);
    EXPECT_EQ(read, content);
    EXPECT_FALSE((*reader)->error());
  }
}

TEST(ZCFFileReader, TellsWhyItFails) {
  const support::TemporaryFolder folder;
  EXPECT_FALSE(ZCFFileReader::openForReading(folder.path("missing")));
  const auto reader = ZCFFileReader::openForReading(folder.path());
  if (!reader) return;  // a system may refuse to open a folder, or to read it
  ZCIOStream stream(*reader);
  std::uint8_t byte = 0;
  EXPECT_EQ(stream.read(&byte, 1), ZCIO_ERROR);
  EXPECT_TRUE((*reader)->error());
}
