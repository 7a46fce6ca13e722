#include "driver/header_scan.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

HeaderScanResult scan(const std::string& text, size_t tableSize = 256) {
  ScratchFolder folder;
  folder.write("device.h", text);
  HeaderScanResult result;
  EXPECT_TRUE(scanCmsisHeader(folder.file("device.h").c_str(), tableSize, result));
  return result;
}

TEST(HeaderScan, EnumeratorsBehindSysTickFillPositions) {
  HeaderScanResult result = scan(
      "  WWDG_IRQn = 99, /* before SysTick: never counts */\n"
      "  SysTick_IRQn = -1,\n"
      "  TIMER_IRQn = 2,\n"
      "\tTAB_IRQn = 5,\n"
      "#define X(n) n##_IRQn\n"
      "  LATE_IRQn = 0x1,\n"
      "  REPEAT_IRQn = 7,\n");
  // TIMER at 2, TAB (with its tab) at 5; LATE is out of order and takes position 6.
  EXPECT_EQ(result.interruptNames,
            (QStringList{"", "", "TIMER", "", "", "\tTAB", "LATE", "REPEAT"}));
}

TEST(HeaderScan, RepeatedNumbersTakeTheNextPositionWithinTheTableAndNeedSysTick) {
  const std::tuple<const char*, size_t, QStringList> cases[] = {
      {"SysTick_IRQn = -1,\nA_IRQn = 0,\nB_IRQn = 0,\nC_IRQn = 1,\n", 256, {"A", "B", "C"}},
      {"  UART_IRQn = 3,\n", 256, {}},
      {"SysTick_IRQn = -1,\nA_IRQn = 1,\nHUGE_IRQn = 0xFFFFFFFF,\nB_IRQn = 2,\n", 4, {"", "A"}}};
  for (const auto& [text, tableSize, names] : cases) EXPECT_EQ(scan(text, tableSize).interruptNames, names) << text;
}

TEST(HeaderScan, MacrosTakeTheFirstDigitBehindTheirName) {
  HeaderScanResult result = scan(
      "#define __MPU_PRESENT 1\n"
      "#define __NVIC_PRIO_BITS 4 /* 3 bits? no, 4 */\n"
      "#define __FPU_PRESENT 10\n"
      "#define __CM4_REV 0x0001\n"
      "#define __CM3_REV 0x0201\n");
  EXPECT_EQ(result.mpuPresentDigit, 1u);
  EXPECT_EQ(result.nvicPrioBits, 4u);
  EXPECT_EQ(result.fpuPresentDigit, 1u);  // only one digit is taken
  EXPECT_EQ(result.coreNumber, 3);        // the later revision macro wins
  // A later mention without a digit resets the value to zero.
  EXPECT_EQ(scan("#define __NVIC_PRIO_BITS 3\n#ifdef __NVIC_PRIO_BITS\n").nvicPrioBits, 0u);
}

TEST(HeaderScan, CoreRevisionChainTakesTheFirstMatchOfALine) {
  EXPECT_TRUE(scan("#define __CM0PLUS_REV 1\n").hasVTOR);
  EXPECT_FALSE(scan("#define __CM0PLUS_REV 1\n#define __CM0_REV 1\n").hasVTOR);
  EXPECT_EQ(scan("#define __CM33_REV 1\n").coreNumber, 33);
  EXPECT_EQ(scan("#define __CM23_REV 1\n").coreNumber, 23);
  EXPECT_EQ(scan("#define __CM7_REV 1 /* __CM4_REV */\n").coreNumber, 4);
}

TEST(HeaderScan, LongLinesAreReadInPiecesOf1023Bytes) {
  // The second piece of the long line starts with the enumerator, so it is seen as a
  // line of its own; the macro name that ends a piece exactly has nothing behind it.
  std::string longLine = std::string(1023, '/') + "X_IRQn = 1,\n";
  std::string macroAtEnd = std::string(1023 - 16, ' ') + "__NVIC_PRIO_BITS" + "3\n";
  HeaderScanResult result = scan("SysTick_IRQn = -1,\n" + longLine + macroAtEnd);
  EXPECT_EQ(result.interruptNames, (QStringList{"", "X"}));
  EXPECT_EQ(result.nvicPrioBits, 0u);
}

}  // namespace
}  // namespace regmill
