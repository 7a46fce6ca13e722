// The section model: binary files at a load address, private copies of a section's
// bytes, and one contiguous section made of many.
#include <gtest/gtest.h>

#include "loadfile/binary_load_file.h"
#include "loadfile/hex_load_files.h"
#include "tests/loadfile/load_file_dump.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::dumpSections;
using testing::thrownText;

TEST(BinaryLoadFile, OneDataSectionAtTheLoadAddressRebuiltOnlyWhenItMoves) {
  testing::ScratchFolder folder;
  BinaryLoadFile file(folder.write("image.bin", std::string("\x01\x02\x00\x03", 4)));
  EXPECT_FALSE(file.hasAddresses());
  const LoadFileSectionInterface* first = file.sections().sections[0].get();
  EXPECT_STREQ(first->name(), "data");
  file.setLoadAddress(0);
  EXPECT_EQ(file.sections().sections[0].get(), first) << "the same address keeps the section";
  file.setLoadAddress(0x08000000);
  EXPECT_EQ(dumpSections(file), "08000000: 01 02 00 03\n");

  std::string missing = folder.file("missing.bin"), directory = folder.path().string();
  EXPECT_EQ(thrownText([&] { BinaryLoadFile{missing}; }), "cannot open " + missing);
  EXPECT_EQ(thrownText([&] { BinaryLoadFile{directory}; }), "cannot read " + directory);
}

TEST(LoadFileSection, WritableDataIsOneCopyThatLeavesTheBytesAsReadAndSectionsCanFail) {
  const uint8_t bytes[] = {1, 2, 3};
  StandardLoadFileSection section("s", 0x100, 3, bytes);
  uint8_t* copy = section.writableData();
  EXPECT_EQ(section.writableData(), copy);
  copy[0] = 0x99;
  EXPECT_EQ(section.data()[0], 1);
  EXPECT_EQ(section.data(true)[0], 0x99);
  section.discardCopy();
  EXPECT_EQ(section.data(true), bytes);

  struct Unreadable : StandardLoadFile {
    bool readSections() override { return false; }
  } file;
  EXPECT_EQ(thrownText([&] { file.sections(); }), "cannot read sections from load file");
}

TEST(MakeContiguous, GapsTakeTheFillTheLaterSectionWinsAndHugeSpansAreRefused) {
  testing::ScratchFolder folder;
  // Sections in list order: 0x104..0x107, then 0x100..0x101, then 0x105 again.
  HexLoadFile file(folder.write("parts.lst", "00000104 A4 A5 A6 A7\n00000100 01 02\n00000105 55\n"));
  file.sortSections();
  EXPECT_EQ(dumpSections(file), "00000100: 01 02\n00000104: A4 A5 A6 A7\n00000105: 55\n");
  file.makeContiguous(0xFF);
  ASSERT_EQ(file.sections().sections.size(), 1u);
  EXPECT_STREQ(file.sections().sections[0]->name(), "Contiguous section");
  EXPECT_EQ(dumpSections(file), "00000100: 01 02 FF FF A4 55 A6 A7\n");

  BinaryLoadFile empty(folder.write("empty.bin", ""));
  empty.makeContiguous(0xFF);
  EXPECT_EQ(dumpSections(empty), "00000000:\n");
  EXPECT_STREQ(empty.sections().sections[0]->name(), "data");
  // The image's last byte is at 0xFFFFFFFF: its end doesn't fit 32 bits.
  HexLoadFile top(folder.write("top.lst", "FFFFFFFE 01\nFFFFFFFF 02\n"));
  top.makeContiguous(0);
  EXPECT_EQ(dumpSections(top), "FFFFFFFE: 01 02\n");
  HexLoadFile far(folder.write("far.lst", "00000000 01\nF0000000 02\n"));
  EXPECT_EQ(thrownText([&] { far.makeContiguous(0); }), "contiguous image larger than 256 MiB");
}

}  // namespace
}  // namespace regmill
