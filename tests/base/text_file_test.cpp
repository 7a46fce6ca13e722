#include "base/text_file.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace regmill {
namespace {

std::string temporaryFile(const std::string& contents) {
  char path[] = "/tmp/regmill-text-XXXXXX";
  int fd = mkstemp(path);
  EXPECT_GE(fd, 0);
  ::close(fd);
  std::ofstream(path, std::ios::binary) << contents;
  return path;
}

std::vector<std::string> linesOf(const std::string& contents, size_t bufferSize) {
  std::string path = temporaryFile(contents);
  TextFileReader reader;
  EXPECT_TRUE(reader.open(path.c_str()));
  std::vector<std::string> lines;
  std::vector<char> buffer(bufferSize);
  while (reader.readLine(buffer.data(), buffer.size())) lines.emplace_back(buffer.data());
  std::remove(path.c_str());
  return lines;
}

TEST(TextFileReader, DropsOnlyCarriageReturnsBeforeLineFeeds) {
  EXPECT_EQ(linesOf("a\r\nb\rc\n\r\r\nend", 64), (std::vector<std::string>{"a\n", "b\rc\n", "\r\n", "end"}));
}

TEST(TextFileReader, LongLinesComeInPieces) {
  EXPECT_EQ(linesOf("abcdefg\nhi\n", 4), (std::vector<std::string>{"abc", "def", "g\n", "hi\n"}));
}

TEST(TextFileReader, CarriageReturnAtPieceBoundaryStillPairs) {
  EXPECT_EQ(linesOf("ab\r\ncd", 3), (std::vector<std::string>{"ab", "\n", "cd"}));
}

TEST(TextFileReader, MissingFileDoesNotOpen) {
  TextFileReader reader;
  EXPECT_FALSE(reader.open("/nonexistent/file"));
  char buffer[8];
  EXPECT_FALSE(reader.readLine(buffer, sizeof buffer));
}

}  // namespace
}  // namespace regmill
