// The section model: binary files at a load address, private copies of a section's
// bytes, and one contiguous section made of many.
#include <gtest/gtest.h>

#include <cstring>

#include "base/hexception.h"
#include "loadfile/binary_load_file.h"
#include "loadfile/hex_load_files.h"
#include "tests/loadfile/load_file_dump.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::dumpSections;
using testing::ScratchFolder;

TEST(BinaryLoadFile, OneDataSectionAtTheLoadAddressRebuiltOnlyWhenItMoves) {
  ScratchFolder folder;
  BinaryLoadFile empty(folder.write("empty.bin", ""));
  EXPECT_FALSE(empty.hasAddresses());
  ASSERT_EQ(empty.sections().sections.size(), 1u);
  EXPECT_EQ(empty.sections().sections[0]->size(), 0u);
  EXPECT_STREQ(empty.sections().sections[0]->name(), "data");

  BinaryLoadFile file(folder.write("image.bin", std::string("\x01\x02\x00\x03", 4)));
  EXPECT_EQ(dumpSections(file), "00000000: 01 02 00 03\n");
  const LoadFileSectionInterface* first = file.sections().sections[0].get();
  file.setLoadAddress(0);
  EXPECT_EQ(file.sections().sections[0].get(), first) << "the same address keeps the section";
  file.setLoadAddress(0x08000000);
  EXPECT_EQ(dumpSections(file), "08000000: 01 02 00 03\n");
}

TEST(BinaryLoadFile, FilesThatCannotBeOpenedOrReadAreNamed) {
  ScratchFolder folder;
  std::string missing = folder.file("missing.bin");
  try {
    BinaryLoadFile file(missing);
    FAIL() << "no exception";
  } catch (const HException& failure) {
    EXPECT_EQ(failure.text(), "cannot open " + missing);
  }
  try {
    BinaryLoadFile file(folder.path().string());
    FAIL() << "no exception";
  } catch (const HException& failure) {
    EXPECT_EQ(failure.text(), "cannot read " + folder.path().string());
  }
}

TEST(LoadFileSection, WritableDataIsOneCopyThatLeavesTheBytesAsRead) {
  const uint8_t bytes[] = {1, 2, 3};
  StandardLoadFileSection section("s", 0x100, 3, bytes);
  uint8_t* copy = section.writableData();
  EXPECT_EQ(section.writableData(), copy);
  copy[0] = 0x99;
  EXPECT_EQ(section.data()[0], 1);
  EXPECT_EQ(section.data(true)[0], 0x99);
  section.discardCopy();
  EXPECT_EQ(section.data(true), bytes);
}

TEST(LoadFileSection, ExpandingSectionKeepsEveryByteWhileItGrows) {
  ExpandingLoadFileSection section(0x2000);
  for (uint32_t i = 0; i < 100000; ++i) *section.append(1) = static_cast<uint8_t>(i * 7);
  ASSERT_EQ(section.size(), 100000u);
  for (uint32_t i = 0; i < 100000; i += 997) ASSERT_EQ(section.data()[i], static_cast<uint8_t>(i * 7)) << i;
}

TEST(MakeContiguous, GapsTakeTheFillAndTheLaterSectionWinsAnOverlap) {
  ScratchFolder folder;
  // Sections in list order: 0x104..0x107, then 0x100..0x101, then 0x105 again.
  std::string path = folder.write("parts.lst",
                                  "00000104 A4 A5 A6 A7\n"
                                  "00000100 01 02\n"
                                  "00000105 55\n");
  HexLoadFile file(path);
  file.makeContiguous(0xFF);
  ASSERT_EQ(file.sections().sections.size(), 1u);
  EXPECT_STREQ(file.sections().sections[0]->name(), "Contiguous section");
  EXPECT_EQ(dumpSections(file), "00000100: 01 02 FF FF A4 55 A6 A7\n");
  file.sortSections();
  file.makeContiguous(0);  // a single section stays as it is
  EXPECT_EQ(dumpSections(file), "00000100: 01 02 FF FF A4 55 A6 A7\n");
}

TEST(MakeContiguous, EmptyAndTopOfMemoryImagesStayAndHugeSpansAreRefused) {
  ScratchFolder folder;
  BinaryLoadFile empty(folder.write("empty.bin", ""));
  empty.makeContiguous(0xFF);
  EXPECT_STREQ(empty.sections().sections[0]->name(), "data");

  // The image's last byte is at 0xFFFFFFFF: its end doesn't fit 32 bits.
  HexLoadFile top(folder.write("top.lst", "FFFFFFFE 01\nFFFFFFFF 02\n"));
  top.makeContiguous(0);
  EXPECT_EQ(dumpSections(top), "FFFFFFFE: 01 02\n");

  HexLoadFile far(folder.write("far.lst", "00000000 01\nF0000000 02\n"));
  EXPECT_THROW(far.makeContiguous(0), HException);
}

TEST(StandardLoadFile, SectionsFailWhenTheyCannotBeRead) {
  struct Unreadable : StandardLoadFile {
    bool readSections() override { return false; }
  } file;
  try {
    file.sections();
    FAIL() << "no exception";
  } catch (const HException& failure) {
    EXPECT_EQ(failure.text(), "cannot read sections from load file");
  }
}

TEST(StandardLoadFile, SortingOrdersByAddressAndKeepsEqualAddressesInListOrder) {
  ScratchFolder folder;
  HexLoadFile file(folder.write("order.lst", "00000300 03\n00000100 01\n00000300 04\n00000200 02\n"));
  file.sortSections();
  EXPECT_EQ(dumpSections(file), "00000100: 01\n00000200: 02\n00000300: 03\n00000300: 04\n");
}

}  // namespace
}  // namespace regmill
