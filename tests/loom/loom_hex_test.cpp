// loom hex as a user meets it: conversions between the formats chosen by extension
// or keyword, binary inputs placed with --address, the section listing, and failures
// that name file and line and leave an existing output as it was.
#include <gtest/gtest.h>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

struct HexCase {
  std::vector<std::string> arguments;
  std::string file;      // the output to read; none: stdout and stderr
  std::string expected;  // a failure starts with "loom: "
};

TEST(LoomHex, ConvertsListsAndFailsLeavingTheOutputAlone) {
  regmill::testing::ScratchFolder folder;
  // Two records with a gap of two bytes between them, and a start address.
  folder.write("in.hex", ":03010000010203F6\n:0101050004F5\n:0400000508000101ED\n:00000001FF\n");
  folder.write("in.bin", "\x01\x02\x03");
  folder.write("bad.hex", ":0100000001FE\n:0100000001FF\n");
  folder.write("far.lst", "00000000 01\nF0000000 02\n");
  folder.write("out.srec", "previous\n");
  const HexCase cases[] = {
      {{"convert", "in.bin", "o.srec", "--address", "0x100"}, "o.srec", "S0076F2E73726563AE\nS1060100010203F2\nS9030000FC\n"},
      // A binary output fills gaps with 0xFF, a text output keeps them unless told.
      {{"convert", "in.hex", "erased.bin"}, "erased.bin", "\x01\x02\x03\xFF\xFF\x04"},
      {{"convert", "in.hex", "zero.img", "--to", "bin", "--fill", "0"}, "zero.img", std::string("\x01\x02\x03\0\0\x04", 6)},
      {{"convert", "in.hex", "gap.lst"}, "gap.lst", "00000100 01 02 03\n00000105 04\n"},
      {{"convert", "in.hex", "filled.TXT", "--fill", "0xEE"}, "filled.TXT", "@00000100\n01 02 03 EE EE 04\nq\n"},
      {{"info", "in.hex"}, "",
       "- start 0x00000100 end 0x00000103 size 0x3\n- start 0x00000105 end 0x00000106 size 0x1\nentry point 0x08000101\n"},
      {{"info", "in.hex", "--from", "bin", "--address", "4096"}, "", "data start 0x00001000 end 0x00001040 size 0x40\n"},
      {{"convert", "bad.hex", "out.srec"}, "", "loom: bad.hex: invalid checksum : line 2\n"},
      {{"convert", "far.lst", "out.srec", "--fill", "0"}, "", "loom: far.lst: contiguous image larger than 256 MiB\n"},
      {{}, "", "loom: hex needs 'convert' or 'info'; run 'loom help hex'\n"},
      {{"convert", "in.hex", "out.elf"}, "", "loom: cannot tell the format of out.elf; give --to KIND\n"},
      {{"convert", "in.hex", "out.bin", "--fill", "256"}, "", "loom: --fill takes a byte value, not '256'\n"},
      {{"info", "missing.hex"}, "", "loom: cannot open missing.hex\n"},
  };
  for (const HexCase& c : cases) {
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.begin(), "hex");
    auto run = regmill::testing::runLoom(arguments, folder.path());
    EXPECT_EQ(run.exitCode, c.expected.starts_with("loom: ") ? 1 : 0) << c.expected;
    EXPECT_EQ(c.file.empty() ? run.out + run.err : folder.read(c.file), c.expected);
  }
  EXPECT_EQ(folder.read("out.srec"), "previous\n");
  EXPECT_EQ(folder.entryCount(), 5u + 5u) << "no output beside those asked for";
}

}  // namespace
}  // namespace loom
