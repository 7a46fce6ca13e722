// The writers, byte for byte, on small images that cross record and address
// boundaries; each expected text is worked out by hand from the record layouts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "loadfile/code_buffer.h"
#include "tests/loadfile/load_file_dump.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

struct Run {
  uint32_t address;
  int count;
  uint8_t first;  // the bytes count up from here
};

// Writes the runs a byte at a time, then again a run at a time into the same path:
// whole runs must break exactly where single bytes do. Gives the text.
template <typename Buffer>
std::string written(const std::vector<Run>& runs, uint32_t start = 0) {
  ScratchFolder folder;
  std::string texts[2];
  for (int whole = 0; whole < 2; ++whole) {
    Buffer buffer(folder.file("out"));
    for (const Run& run : runs) {
      uint8_t bytes[32];
      for (int i = 0; i < run.count; ++i) bytes[i] = static_cast<uint8_t>(run.first + i);
      if (whole) {
        buffer.writeBytes(run.address, bytes, run.count);
        continue;
      }
      buffer.setAddress(run.address);
      for (int i = 0; i < run.count; ++i) buffer.writeByte(bytes[i]);
    }
    buffer.finish(start);
    texts[whole] = folder.read("out");
  }
  EXPECT_EQ(texts[1], texts[0]) << "whole runs";
  return texts[0];
}

TEST(IntelHexBuffer, RecordsBreakAtTheLinearBoundaryAndExtendedRecordsAppearOnChange) {
  EXPECT_EQ(written<IntelHexBuffer>({{0xFFF8, 17, 0}}),
            ":08FFF8000001020304050607E5\n"
            ":020000040001F9\n"
            ":0900000008090A0B0C0D0E0F108B\n"
            ":00000001FF\n");
  EXPECT_EQ(written<IntelHexBuffer>({{0x1234, 3, 0xAA}, {0xFFFFFFFF, 1, 0x5A}, {0x20000000, 2, 0x11}}),
            ":03123400AAABACB6\n"
            ":02000004FFFFFC\n"
            ":01FFFF005AA7\n"
            ":020000042000DA\n"
            ":020000001112DB\n"
            ":00000001FF\n");
  EXPECT_EQ(written<IntelHexBuffer>({}), ":00000001FF\n");
}

TEST(SRecordBuffer, TheLinesStartAddressChoosesTheRecordType) {
  // S1 running past 0xFFFF, then S2; S2 running past 0xFFFFFF, then S3.
  std::string text = written<SRecordBuffer>(
      {{0xFFF8, 17, 0}, {0xFFFFF8, 17, 0}, {0xFFFFFF, 1, 0xEE}, {0xFFFFFFF0, 2, 1}}, 0x12345678);
  text.erase(0, text.find('\n') + 1);  // the header holds the path; the front end's tests check it
  EXPECT_EQ(text,
            "S113FFF8000102030405060708090A0B0C0D0E0F7D\n"
            "S20501000810E1\n"
            "S214FFFFF8000102030405060708090A0B0C0D0E0F7D\n"
            "S3060100000810E0\n"
            "S30600FFFFFFEE0E\n"
            "S307FFFFFFF0010208\n"
            "S90356782E\n");
}

TEST(TextBuffers, TIGivesAnAddressLineOnlyWhereBytesDontContinueAndTheListOnEveryLine) {
  // 0x201 is where the bytes stand already: the line goes on.
  EXPECT_EQ(written<TIHexBuffer>({{0x100, 18, 1}, {0x200, 1, 0xAA}, {0x201, 1, 0xBB}}),
            "@00000100\n"
            "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10\n"
            "11 12\n"
            "@00000200\n"
            "AA BB\n"
            "q\n");
  EXPECT_EQ(written<HexBuffer>({{0xFFFFFFF0, 20, 0x30}, {0x10, 2, 0xA0}}),
            "FFFFFFF0 30 31 32 33 34 35 36 37 38 39 3A 3B 3C 3D 3E 3F\n"
            "00000000 40 41 42 43\n"
            "00000010 A0 A1\n");
}

TEST(CodeBuffer, NothingReachesTheFileUnlessFinished) {
  ScratchFolder folder;
  std::string path = folder.write("kept.hex", "old contents\n");
  {
    IntelHexBuffer buffer(path);
    buffer.writeBytes(0, reinterpret_cast<const uint8_t*>(path.data()), path.size());
  }
  EXPECT_EQ(folder.read("kept.hex"), "old contents\n");
  EXPECT_EQ(folder.entryCount(), 1u) << "no temporary file stays behind";
  std::string unreachable = folder.file("no/such/folder/out.hex");
  EXPECT_EQ(testing::thrownText([&] { IntelHexBuffer{unreachable}; }), "cannot open " + unreachable);
}

}  // namespace
}  // namespace regmill
