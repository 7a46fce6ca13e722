// loom hex as a user meets it: conversions between the formats chosen by extension
// or keyword, binary inputs placed with --address, the section listing, and failures
// that name file and line and leave an existing output as it was.
#include <gtest/gtest.h>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

// Two records with a gap of two bytes between them, and a start address.
const std::string kGappedHex =
    ":03010000010203F6\n"
    ":0101050004F5\n"
    ":0400000508000101ED\n"
    ":00000001FF\n";

TEST(LoomHex, PlacesABinaryFileAndWritesSRecordsWithThePathInTheHeader) {
  ScratchFolder folder;
  folder.write("in.bin", "\x01\x02\x03");
  auto run = runLoom({"hex", "convert", "in.bin", "o.srec", "--address", "0x100"}, folder.path());
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(folder.read("o.srec"),
            "S0076F2E73726563AE\n"
            "S1060100010203F2\n"
            "S9030000FC\n");
}

TEST(LoomHex, BinaryOutputFillsGapsAndKeywordsOverrideExtensions) {
  ScratchFolder folder;
  folder.write("in.hex", kGappedHex);
  ASSERT_EQ(runLoom({"hex", "convert", "in.hex", "erased.bin"}, folder.path()).exitCode, 0);
  EXPECT_EQ(folder.read("erased.bin"), std::string("\x01\x02\x03\xFF\xFF\x04"));
  ASSERT_EQ(runLoom({"hex", "convert", "in.hex", "zero.img", "--to", "bin", "--fill", "0"}, folder.path()).exitCode, 0);
  EXPECT_EQ(folder.read("zero.img"), std::string("\x01\x02\x03\x00\x00\x04", 6));

  // A text output keeps the gap unless a fill is asked for.
  ASSERT_EQ(runLoom({"hex", "convert", "in.hex", "gap.lst"}, folder.path()).exitCode, 0);
  EXPECT_EQ(folder.read("gap.lst"), "00000100 01 02 03\n00000105 04\n");
  ASSERT_EQ(runLoom({"hex", "convert", "in.hex", "filled.TXT", "--fill", "0xEE"}, folder.path()).exitCode, 0);
  EXPECT_EQ(folder.read("filled.TXT"), "@00000100\n01 02 03 EE EE 04\nq\n");
}

TEST(LoomHex, InfoListsSectionsAndTheEntryPoint) {
  ScratchFolder folder;
  folder.write("in.hex", kGappedHex);
  auto run = runLoom({"hex", "info", "in.hex"}, folder.path());
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out,
            "- start 0x00000100 end 0x00000103 size 0x3\n"
            "- start 0x00000105 end 0x00000106 size 0x1\n"
            "entry point 0x08000101\n");
  folder.write("image.dat", std::string(0x20, '\0'));
  run = runLoom({"hex", "info", "image.dat", "--from", "bin", "--address", "4096"}, folder.path());
  EXPECT_EQ(run.out, "data start 0x00001000 end 0x00001020 size 0x20\n");
}

TEST(LoomHex, AFailedConversionNamesFileAndLineAndLeavesTheOutputAlone) {
  ScratchFolder folder;
  folder.write("bad.hex", ":0100000001FE\n:0100000001FF\n");
  folder.write("out.srec", "previous\n");
  auto run = runLoom({"hex", "convert", "bad.hex", "out.srec"}, folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "loom: bad.hex: invalid checksum : line 2\n");
  EXPECT_EQ(folder.read("out.srec"), "previous\n");

  // Sections too far apart for one binary image: nothing is written either.
  folder.write("far.lst", "00000000 01\nF0000000 02\n");
  run = runLoom({"hex", "convert", "far.lst", "out.srec", "--fill", "0"}, folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "loom: far.lst: contiguous image larger than 256 MiB\n");
  EXPECT_EQ(folder.read("out.srec"), "previous\n");
  EXPECT_EQ(folder.entryCount(), 3u);
}

TEST(LoomHex, ArgumentsItCannotUseAreRefused) {
  ScratchFolder folder;
  folder.write("in.hex", kGappedHex);
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"hex"}, "loom: hex needs 'convert' or 'info'; run 'loom help hex'\n"},
      {{"hex", "convert", "in.hex", "out.elf"}, "loom: cannot tell the format of out.elf; give --to KIND\n"},
      {{"hex", "convert", "in.hex", "out.bin", "--fill", "256"}, "loom: --fill takes a byte value, not '256'\n"},
      {{"hex", "info", "missing.hex"}, "loom: cannot open missing.hex\n"},
  };
  for (const auto& [arguments, message] : cases) {
    auto run = runLoom(arguments, folder.path());
    EXPECT_EQ(run.exitCode, 1) << message;
    EXPECT_EQ(run.err, message);
  }
}

}  // namespace
}  // namespace loom
