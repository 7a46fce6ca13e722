// What the converter reads besides the device file: its command line and the
// device header behind -irqs2.
#include "driver/command_line.h"
#include "driver/header_scan.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "memorymap/svd_file.h"
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

CommandLine read(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "regmill");
  return readCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, ValueIsTakenWhateverItLooksLike) {
  CommandLine line = read({"-remove", "-pp", "-irq-table", "-ddf", "in", "out"});
  ASSERT_EQ(line.missingValueMessage, nullptr);
  EXPECT_EQ(line.options.removalList, "-pp");
  EXPECT_EQ(line.options.vectorTableName, "-ddf");
  EXPECT_FALSE(line.options.addPPBGroups);
  EXPECT_FALSE(line.options.inputIsDDF);
  EXPECT_EQ(line.options.positional, (std::vector<std::string>{"in", "out"}));
  // Unknown words and other case are positional.
  line = read({"-x", "-PP", "-ddf", "a"});
  EXPECT_EQ(line.options.positional, (std::vector<std::string>{"-x", "-PP", "a"}));
  EXPECT_TRUE(line.options.inputIsDDF);
}

TEST(CommandLine, NumbersReadAsByStrtoulInBaseZeroAndTheLastValueHolds) {
  // The library's own number reader would give 105 for "7z".
  CommandLine line = read({"-include", "a.xml", "-include", "b.xml", "-irq-start", "3", "-irq-start", "010", "-nvic",
                           "7z", "-core", "0x21"});
  EXPECT_EQ(line.options.includeFile, "b.xml");
  EXPECT_EQ(line.options.firstVectorEntry, 8u);
  EXPECT_EQ(line.options.nvicPrioBits, 7u);
  EXPECT_EQ(line.options.coreNumber, 33u);
}

TEST(CommandLine, SwitchesSetFlagsAndDefaultsHold) {
  CommandLine plain = read({"a", "b"});
  EXPECT_EQ(plain.options.firstVectorEntry, 16u);
  EXPECT_EQ(plain.options.readerFlags, 0u);
  CommandLine line = read({"-reg-size-bytes", "-ignore-description", "-mpu", "-fpu", "-pp", "-rdt", "-tcf"});
  EXPECT_EQ(line.options.readerFlags, flagBit(SVDReaderFlag::RegSizeInBytes) | flagBit(SVDReaderFlag::IgnoreDescription));
  EXPECT_TRUE(line.options.coreHasMPU && line.options.coreHasFPU && line.options.addPPBGroups);
  EXPECT_TRUE(line.options.inputIsRDT && line.options.inputIsTCF);
}

}  // namespace
}  // namespace regmill
