#include "base/parse_number.h"

#include <gtest/gtest.h>

namespace regmill {
namespace {

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
