// Reading text: a file line by line in pieces, and numbers in their written forms.
#include "base/parse_number.h"
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

TEST(ParseNumber, PrefixesSignsAndSuffixes) {
  const std::pair<const char*, int64_t> cases[] = {
      {"0x1F", 31},     {"0X10", 16},   {"0b101", 5},  {"017", 15},   {"42", 42},
      {"  -12", -12},   {"+7", 7},      {"0x20UL", 32}, {"10u", 10},  {"", 0},
      {"0", 0},         {"0x", 0},      {"12 34", 12}, {"-0x10", -16},
      // Letters add their value whatever the base: 0b12 reads 1*2+2, 019 reads 1*8+9.
      {"0b12", 4},      {"019", 17},    {"1z", 45},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(parseNumber64(text), value) << text;
}

TEST(ParseNumber, ThirtyTwoBitFormKeepsTheLowBits) {
  EXPECT_EQ(parseNumber("0x1FFFFFFFF"), -1);
  EXPECT_EQ(parseNumber("0xFFFFFFFF"), -1);
  EXPECT_EQ(parseNumber("0x7FFFFFFF"), 0x7FFFFFFF);
}

TEST(ParseUnsignedC, NegativeNumbersWrapAndJunkOrNothingIsZero) {
  EXPECT_EQ(parseUnsignedC("-1"), 0xFFFFFFFFu);
  EXPECT_EQ(parseUnsignedC("junk"), 0u);
  EXPECT_EQ(parseUnsignedC(nullptr), 0u);
}

}  // namespace
}  // namespace regmill
