#include "driver/command_line.h"

#include <gtest/gtest.h>

#include <vector>

#include "memorymap/svd_file.h"

namespace regmill {
namespace {

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
