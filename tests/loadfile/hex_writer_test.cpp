// The writers, byte for byte, on small images that cross record and address
// boundaries; each expected text is worked out by hand from the record layouts.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "loadfile/code_buffer.h"
#include "tests/loadfile/load_file_dump.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

// Writes `count` bytes counting up from `first`, starting at `address`.
void writeRun(CodeBuffer& buffer, uint32_t address, int count, uint8_t first = 0) {
  buffer.setAddress(address);
  for (int i = 0; i < count; ++i) buffer.writeByte(static_cast<uint8_t>(first + i));
}

template <typename Buffer>
std::string written(const std::function<void(CodeBuffer&)>& fill, uint32_t start = 0) {
  ScratchFolder folder;
  std::string path = folder.file("out");
  Buffer buffer(path);
  fill(buffer);
  buffer.finish(start);
  return folder.read("out");
}

TEST(IntelHexBuffer, RecordsBreakAtTheLinearBoundaryAndExtendedRecordsAppearOnChange) {
  EXPECT_EQ(written<IntelHexBuffer>([](CodeBuffer& b) { writeRun(b, 0xFFF8, 17); }),
            ":08FFF8000001020304050607E5\n"
            ":020000040001F9\n"
            ":0900000008090A0B0C0D0E0F108B\n"
            ":00000001FF\n");
  EXPECT_EQ(written<IntelHexBuffer>([](CodeBuffer& b) {
              b.writeBytes(0x1234, reinterpret_cast<const uint8_t*>("\xAA\xBB\xCC"), 3);
              b.writeBytes(0x20000000, reinterpret_cast<const uint8_t*>("\x11\x22"), 2);
              writeRun(b, 0xFFFFFFFF, 1, 0x5A);
            }),
            ":03123400AABBCC86\n"
            ":020000042000DA\n"
            ":020000001122CB\n"
            ":02000004FFFFFC\n"
            ":01FFFF005AA7\n"
            ":00000001FF\n");
  EXPECT_EQ(written<IntelHexBuffer>([](CodeBuffer&) {}), ":00000001FF\n");
}

TEST(SRecordBuffer, TheLinesStartAddressChoosesTheRecordType) {
  std::string text = written<SRecordBuffer>(
      [](CodeBuffer& b) {
        writeRun(b, 0xFFF8, 17);      // S1 running past 0xFFFF, then S2
        writeRun(b, 0xFFFFF8, 17);    // S2 running past 0xFFFFFF, then S3
        writeRun(b, 0xFFFFFF, 1, 0xEE);
        writeRun(b, 0xFFFFFFF0, 2, 1);
      },
      0x12345678);
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

TEST(TIHexBuffer, AnAddressLineOnlyWhereTheBytesDontContinue) {
  EXPECT_EQ(written<TIHexBuffer>([](CodeBuffer& b) {
              writeRun(b, 0x100, 18, 1);
              writeRun(b, 0x200, 1, 0xAA);
              writeRun(b, 0x201, 1, 0xBB);  // the same address as the current one: the line goes on
            }),
            "@00000100\n"
            "01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10\n"
            "11 12\n"
            "@00000200\n"
            "AA BB\n"
            "q\n");
}

TEST(HexBuffer, EachLineCarriesItsAddress) {
  EXPECT_EQ(written<HexBuffer>([](CodeBuffer& b) {
              writeRun(b, 0xFFFFFFF0, 20, 0x30);
              writeRun(b, 0x10, 2, 0xA0);
            }),
            "FFFFFFF0 30 31 32 33 34 35 36 37 38 39 3A 3B 3C 3D 3E 3F\n"
            "00000000 40 41 42 43\n"
            "00000010 A0 A1\n");
}

// Whole runs go in a line at a time; they must break exactly where single bytes do.
template <typename Buffer>
void expectRunsWriteAsSingleBytes() {
  std::vector<std::pair<uint32_t, int>> runs = {{0xFFF3, 70}, {0x10050, 3}, {0x1FFFE, 40}, {0xFFFFFFF0, 40}, {0x20, 1}};
  uint8_t bytes[70];
  for (int i = 0; i < 70; ++i) bytes[i] = static_cast<uint8_t>(i * 11);
  auto single = written<Buffer>([&](CodeBuffer& b) {
    for (auto [address, count] : runs) {
      b.setAddress(address);
      for (int i = 0; i < count; ++i) b.writeByte(bytes[i]);
    }
  });
  auto whole = written<Buffer>([&](CodeBuffer& b) {
    for (auto [address, count] : runs) b.writeBytes(address, bytes, count);
  });
  EXPECT_EQ(whole.substr(whole.find('\n')), single.substr(single.find('\n')));
}

TEST(CodeBuffer, RunsWriteAsSingleBytesDo) {
  expectRunsWriteAsSingleBytes<IntelHexBuffer>();
  expectRunsWriteAsSingleBytes<SRecordBuffer>();
  expectRunsWriteAsSingleBytes<TIHexBuffer>();
  expectRunsWriteAsSingleBytes<HexBuffer>();
}

TEST(CodeBuffer, NothingReachesTheFileUnlessFinished) {
  ScratchFolder folder;
  std::string path = folder.write("kept.hex", "old contents\n");
  {
    IntelHexBuffer buffer(path);
    writeRun(buffer, 0, 40);
  }
  EXPECT_EQ(folder.read("kept.hex"), "old contents\n");
  EXPECT_EQ(folder.entryCount(), 1u) << "no temporary file stays behind";
  std::string unreachable = folder.file("no/such/folder/out.hex");
  EXPECT_EQ(testing::thrownText([&] { IntelHexBuffer{unreachable}; }), "cannot open " + unreachable);
}

}  // namespace
}  // namespace regmill
