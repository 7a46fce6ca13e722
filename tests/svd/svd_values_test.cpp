// The reader's number conversions, the interrupt table and the core values.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "readers/svd/svd_numbers.h"
#include "readers/svd/svd_reader.h"
#include "tests/svd/svd_test_support.h"

namespace regmill {
namespace {

TEST(SVDValues, DecimalAndPrefixedNumbersReadTheWholeText) {
  struct Case {
    const char* text;
    std::optional<int32_t> decimal;
    std::optional<int32_t> prefixed;
  };
  const std::nullopt_t none = std::nullopt;
  const Case cases[] = {
      {"32", 32, 32},       {" 12\n", 12, 12},   {"-4", -4, -4},         {"0x20", none, 32},  {"0X1f", none, 31},
      {"-0x10", none, -16}, {"010", 10, 8},      {"08", 8, none},        {"0", 0, 0},         {"0b1", none, none},
      {"0x", none, none},   {"12abc", none, none}, {"4U", none, none},   {"", none, none},
      {"2147483647", 2147483647, 2147483647},    {"2147483648", none, none}, {"0xffffffff", none, none},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(decimalNumber(c.text), c.decimal);
    EXPECT_EQ(prefixedNumber(c.text), c.prefixed);
  }
}

TEST(SVDValues, InterruptsFillTheTableByDecimalNumber) {
  // A hexadecimal or negative value is dropped, the last name of a number wins, a
  // "value" counts only behind its "name", and one element may hold several pairs.
  const std::string svd = testing::deviceWithPeripherals(R"(<peripheral><name>P</name>
    <interrupt><name>INT_TIMER0</name><value>16</value></interrupt>
    <interrupt><name>UART0_IRQ</name><description>u</description><value>5</value></interrupt>
    <interrupt><name>INT_UART0_IRQ</name><value>6</value></interrupt>
    <interrupt><name>HEX</name><value>0x3</value></interrupt><interrupt><name>NEGATIVE</name><value>-1</value></interrupt>
    <interrupt><name>AT_END</name><value>32</value></interrupt>
    <interrupt><name>FIRST</name><value>7</value></interrupt><interrupt><name>LAST</name><value>7</value></interrupt>
    <interrupt><value>8</value><name>VALUE_FIRST</name></interrupt>
    <interrupt><name>P</name><value>9</value><name>Q</name><value>10</value></interrupt>
    <interrupt><name></name><value>11</value></interrupt></peripheral>)");
  SVDFile file;
  file.setInterruptTableSize(32);
  ASSERT_TRUE(loadSVDFromText(file, svd.c_str(), 0, nullptr));
  const std::pair<int, const char*> expected[] = {{16, "TIMER0"}, {5, "UART0"}, {6, "UART0_IRQ"}, {3, nullptr},
                                                  {7, "LAST"},    {8, nullptr},  {9, "P"},  {10, "Q"}, {11, nullptr}};
  for (const auto& [index, name] : expected) {
    SCOPED_TRACE(index);
    EXPECT_STREQ(file.interruptName(index), name);
  }
  EXPECT_EQ(file.highestInterrupt, 16);

  SVDFile kept;
  kept.setInterruptTableSize(32);
  ASSERT_TRUE(loadSVDFromText(kept, svd.c_str(), KeepInterrupts, nullptr));
  EXPECT_EQ(kept.highestInterrupt, -1);
  SVDFile withoutTable;
  ASSERT_TRUE(loadSVDFromText(withoutTable, svd.c_str(), 0, nullptr));
  EXPECT_EQ(withoutTable.highestInterrupt, SVDFile().highestInterrupt);  // untouched
  EXPECT_EQ(withoutTable.interruptName(16), nullptr);
}

struct CoreValues {
  int32_t core;
  bool vtor, mpu, fpu;
  uint32_t prioBits;
  bool operator==(const CoreValues&) const = default;
};

CoreValues readCore(const std::string& cpu, uint32_t flags = 0) {
  SVDFile file;
  file.setCoreInfo(4, true, 2, true, true);  // as the command line might have set them
  EXPECT_TRUE(loadSVDFromText(file, testing::deviceWith("<cpu>" + cpu + "</cpu>").c_str(), flags, nullptr));
  return {file.coreNumber, file.hasVTOR, file.mpuPresent, file.fpuPresent, file.nvicPrioBits};
}

TEST(SVDValues, CpuReplacesTheCoreValues) {
  const std::pair<const char*, CoreValues> cases[] = {
      {"<name>CM0</name><nvicPrioBits>2</nvicPrioBits>", {0, false, false, false, 2}},
      {"<name>CM0PLUS</name><mpuPresent>1</mpuPresent>", {0, true, true, false, 0}},
      {"<name>CM0+</name><fpuPresent>true</fpuPresent>", {0, true, false, true, 0}},
      {"<name>CM7</name><mpuPresent>TRUE</mpuPresent><fpuPresent>yes</fpuPresent>", {7, true, false, false, 0}},
      {"<name>CM23</name><nvicPrioBits>0x3</nvicPrioBits>", {23, true, false, false, 0}},
      {"<name>CM33</name><fpuPresent>1</fpuPresent>", {33, true, false, true, 0}},
      {"<name>CM55</name><nvicPrioBits>3</nvicPrioBits>", {4, true, false, false, 3}},
      {"<name>cm3</name><nvicPrioBits>-1</nvicPrioBits>", {4, true, false, false, 0}},
  };
  for (const auto& [cpu, expected] : cases) {
    SCOPED_TRACE(cpu);
    EXPECT_EQ(readCore(cpu), expected);
  }
  EXPECT_EQ(readCore("<name>CM0</name>", KeepCoreInfo), (CoreValues{4, true, true, true, 2}));
}

}  // namespace
}  // namespace regmill
