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
}

TEST(CommandLine, UnknownWordsAndOtherCaseArePositional) {
  CommandLine line = read({"-x", "-PP", "-ddf", "a"});
  EXPECT_EQ(line.options.positional, (std::vector<std::string>{"-x", "-PP", "a"}));
  EXPECT_TRUE(line.options.inputIsDDF);
}

TEST(CommandLine, NumbersReadAsByStrtoulInBaseZero) {
  struct Case {
    const char* text;
    uint32_t value;
  } cases[] = {{"010", 8}, {"7z", 7}};  // the library's own reader would give 105 for "7z"
  for (const Case& c : cases) {
    CommandLine line = read({"-irq-start", c.text, "-nvic", c.text, "-core", c.text});
    EXPECT_EQ(line.options.firstVectorEntry, c.value) << c.text;
    EXPECT_EQ(line.options.nvicPrioBits, c.value) << c.text;
    EXPECT_EQ(line.options.coreNumber, c.value) << c.text;
  }
}

TEST(CommandLine, OptionGivenTwiceKeepsItsLastValue) {
  CommandLine line = read({"-include", "a.xml", "-include", "b.xml", "-irq-start", "3", "-irq-start", "5"});
  EXPECT_EQ(line.options.includeFile, "b.xml");
  EXPECT_EQ(line.options.firstVectorEntry, 5u);
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
