#include "base/text_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

std::vector<std::string> linesOf(const std::string& contents, size_t bufferSize) {
  testing::ScratchFolder folder;
  TextFileReader reader;
  EXPECT_TRUE(reader.open(folder.write("text", contents).c_str()));
  std::vector<std::string> lines;
  std::vector<char> buffer(bufferSize);
  while (reader.readLine(buffer.data(), buffer.size())) lines.emplace_back(buffer.data());
  return lines;
}

TEST(TextFileReader, LinesComeInPiecesWithOnlyCarriageReturnsBeforeLineFeedsDropped) {
  const std::tuple<const char*, size_t, std::vector<std::string>> cases[] = {
      {"a\r\nb\rc\n\r\r\nend", 64, {"a\n", "b\rc\n", "\r\n", "end"}},
      {"abcdefg\nhi\n", 4, {"abc", "def", "g\n", "hi\n"}},
      {"ab\r\ncd", 3, {"ab", "\n", "cd"}},  // a carriage return at a piece boundary still pairs
  };
  for (const auto& [contents, bufferSize, lines] : cases) EXPECT_EQ(linesOf(contents, bufferSize), lines) << contents;
}

}  // namespace
}  // namespace regmill
