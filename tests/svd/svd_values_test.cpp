// The reader's number conversions, the interrupt table and the core values.
#include <optional>

#include "base/parse_number.h"
#include "tests/svd/svd_test_support.h"

namespace regmill {
namespace {

TEST(SVDValues, DecimalAndPrefixedNumbersReadTheWholeText) {
  const std::nullopt_t none = std::nullopt;
  const std::tuple<const char*, std::optional<int32_t>, std::optional<int32_t>> cases[] = {
      {"32", 32, 32},       {" 12\n", 12, 12},   {"-4", -4, -4},         {"0x20", none, 32},  {"0X1f", none, 31},
      {"-0x10", none, -16}, {"010", 10, 8},      {"08", 8, none},        {"0", 0, 0},         {"0b1", none, none},
      {"0x", none, none},   {"12abc", none, none}, {"4U", none, none},   {"", none, none},   {"-", none, none},
      {"2147483647", 2147483647, 2147483647},    {"2147483648", none, none}, {"0xffffffff", none, none},
      {"18446744073709551621", none, none}};  // 2^64 + 5: an overflow, not 5
  for (const auto& [text, decimal, prefixed] : cases) {
    EXPECT_EQ(decimalNumber(text), decimal) << text;
    EXPECT_EQ(prefixedNumber(text), prefixed) << text;
  }
}

TEST(SVDValues, InterruptsFillTheTableByDecimalNumber) {
  // "INT_" or else "_IRQ" is cut off; a hexadecimal, negative or too high value is
  // dropped, the last name of a number wins, a "value" counts only behind its "name",
  // and one element may hold several pairs.
  const std::string svd = deviceWithPeripherals(R"(<peripheral><name>P</name>
    <interrupt><name>INT_TIMER0</name><value>16</value></interrupt><interrupt><name>INT_UART0_IRQ</name><value>6</value></interrupt>
    <interrupt><name>UART0_IRQ</name><description>u</description><value>5</value></interrupt><interrupt><value>8</value><name>V</name></interrupt>
    <interrupt><name>HEX</name><value>0x3</value></interrupt><interrupt><name>NEGATIVE</name><value>-1</value></interrupt>
    <interrupt><name>AT_END</name><value>32</value></interrupt><interrupt><name></name><value>11</value></interrupt>
    <interrupt><name>FIRST</name><value>7</value></interrupt><interrupt><name>LAST</name><value>7</value></interrupt>
    <interrupt><name>P</name><value>9</value><name>Q</name><value>10</value></interrupt></peripheral>)");
  SVDFile file, kept, withoutTable;
  file.setInterruptTableSize(32);
  kept.setInterruptTableSize(32);
  ASSERT_TRUE(loadSVDFromText(file, svd.c_str(), 0, nullptr));
  const std::pair<int, const char*> expected[] = {{16, "TIMER0"}, {5, "UART0"}, {6, "UART0_IRQ"}, {3, nullptr},
                                                  {7, "LAST"},    {8, nullptr},  {9, "P"},  {10, "Q"}, {11, nullptr}};
  for (const auto& [index, name] : expected) EXPECT_STREQ(file.interruptName(index), name) << index;
  EXPECT_EQ(file.highestInterrupt, 16);
  // With KeepInterrupts, or without a table, nothing is stored and the highest stays.
  ASSERT_TRUE(loadSVDFromText(kept, svd.c_str(), flagBit(SVDReaderFlag::KeepInterrupts), nullptr));
  ASSERT_TRUE(loadSVDFromText(withoutTable, svd.c_str(), 0, nullptr));
  EXPECT_EQ(kept.highestInterrupt, -1);
  EXPECT_EQ(kept.interruptName(16), nullptr);
  EXPECT_EQ(withoutTable.highestInterrupt, SVDFile().highestInterrupt);
}

TEST(SVDValues, CpuReplacesTheCoreValues) {
  // Read over 4, VTOR, 2 priority bits, MPU and FPU, as the command line might set them.
  auto core = [](const std::string& cpu, uint32_t flags = 0) {
    SVDFile file;
    file.setCoreInfo(4, true, 2, true, true);
    EXPECT_TRUE(loadSVDFromText(file, deviceWith("<cpu>" + cpu + "</cpu>").c_str(), flags, nullptr));
    return std::to_string(file.coreNumber) + (file.hasVTOR ? " vtor" : "") + (file.mpuPresent ? " mpu" : "") +
           (file.fpuPresent ? " fpu" : "") + " bits " + std::to_string(file.nvicPrioBits);
  };
  const std::pair<const char*, const char*> cases[] = {
      {"<name>CM0</name><nvicPrioBits>2</nvicPrioBits>", "0 bits 2"},
      {"<name>CM0PLUS</name><mpuPresent>1</mpuPresent>", "0 vtor mpu bits 0"},
      {"<name>CM0+</name><fpuPresent>true</fpuPresent>", "0 vtor fpu bits 0"},
      {"<name>CM7</name><mpuPresent>TRUE</mpuPresent><fpuPresent>yes</fpuPresent>", "7 vtor bits 0"},
      {"<name>CM23</name><nvicPrioBits>0x3</nvicPrioBits>", "23 vtor bits 0"},
      {"<name>CM33</name><fpuPresent>1</fpuPresent>", "33 vtor fpu bits 0"},
      {"<name>CM55</name><nvicPrioBits>3</nvicPrioBits>", "4 vtor bits 3"},
      {"<name>cm3</name><nvicPrioBits>-1</nvicPrioBits>", "4 vtor bits 0"}};
  for (const auto& [cpu, expected] : cases) EXPECT_EQ(core(cpu), expected) << cpu;
  EXPECT_EQ(core("<name>CM0</name>", flagBit(SVDReaderFlag::KeepCoreInfo)), "4 vtor mpu fpu bits 2");
}

}  // namespace
}  // namespace regmill
