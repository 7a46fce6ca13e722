// Round trips with real peers: what our writers make, srec_cat reads to the same
// image; what srec_cat and objcopy write, our readers read to the same image. The
// images cross 0xFFFF/0x10000, 0xFFFFFF, a 64 KiB boundary high in 32-bit space and
// the top of memory, with gaps. Skips when a peer is not installed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "loadfile/load_file_formats.h"
#include "tests/loadfile/load_file_dump.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

#define REGMILL_NEED_PEER(name)                                                  \
  if (std::system("command -v " name " >/dev/null 2>&1") != 0)                   \
  GTEST_SKIP() << name << " is not installed (Debian packages srecord, binutils)"

void runPeer(const std::string& name, std::vector<std::string> arguments, const ScratchFolder& folder) {
  arguments.insert(arguments.begin(), name);  // env finds the peer on PATH
  auto run = testing::runProgram("/usr/bin/env", arguments, folder.path());
  ASSERT_EQ(run.exitCode, 0) << name << ": " << run.err;
}

std::string hexNumber(uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
  return text;
}

struct Chunk {
  uint32_t address;
  std::string bytes;
};

struct Image {
  const char* what;
  std::vector<Chunk> chunks;  // rising addresses, the first at the image's start

  uint32_t low() const { return chunks.front().address; }
  uint64_t high() const { return chunks.back().address + uint64_t{chunks.back().bytes.size()}; }
  // The bytes from low to high, gaps filled with 0xFF.
  std::string filled() const {
    std::string bytes(high() - low(), '\xFF');
    for (const Chunk& chunk : chunks) bytes.replace(chunk.address - low(), chunk.bytes.size(), chunk.bytes);
    return bytes;
  }
};

std::string randomBytes(size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(generator());
  return bytes;
}

const Image kImages[] = {
    {"around 0x10000", {{0xFFF0, randomBytes(40, 1)}, {0x10020, randomBytes(17, 2)}}},
    {"around 0x1000000", {{0xFFFFF0, randomBytes(300, 3)}, {0x1000200, randomBytes(5, 4)}}},
    {"32-bit addresses", {{0x08000000, randomBytes(70000, 5)}, {0x08011180, randomBytes(33, 6)}}},
    {"top of memory", {{0xFFFFFE00, randomBytes(200, 7)}, {0xFFFFFF10, randomBytes(240, 8)}}},
};

struct PeerFormat {
  LoadFileFormat format;
  const char* extension;
  const char* srecCatName;
  const char* objcopyName;  // empty where objcopy has no such format
};

constexpr PeerFormat kFormats[] = {
    {LoadFileFormat::IntelHex, "hex", "-intel", "ihex"},
    {LoadFileFormat::SRecord, "srec", "-motorola", "srec"},
    {LoadFileFormat::TIHex, "txt", "-ti-txt", ""},
};

// What our reader makes of a file: its start address, then the image with its gaps filled.
std::string readFilled(LoadFileFormat format, const std::string& path) {
  auto file = loadLoadFile(format, path);
  file->makeContiguous(0xFF);
  const auto& section = *file->sections().sections.front();
  return hexNumber(section.address()) + ":" + std::string(reinterpret_cast<const char*>(section.data()), section.size());
}

// srec_cat reads what we write, and we read what it writes. It is given each chunk
// as a binary file of its own, so that it writes the gaps as gaps; objcopy, which
// takes one binary file, gets the first chunk alone.
TEST(PeerRoundTrip, EachImageInEachFormatBothWays) {
  REGMILL_NEED_PEER("srec_cat");
  REGMILL_NEED_PEER("objcopy");
  for (const Image& image : kImages) {
    for (const PeerFormat& format : kFormats) {
      SCOPED_TRACE(std::string(image.what) + " as " + format.extension);
      ScratchFolder folder;
      auto buffer = makeCodeBuffer(format.format, folder.file("ours"));
      std::vector<std::string> arguments;
      for (size_t i = 0; i < image.chunks.size(); ++i) {
        const Chunk& chunk = image.chunks[i];
        buffer->writeBytes(chunk.address, reinterpret_cast<const uint8_t*>(chunk.bytes.data()), chunk.bytes.size());
        std::string name = folder.write("chunk" + std::to_string(i) + ".bin", chunk.bytes);
        arguments.insert(arguments.end(), {name, "-binary", "-offset", hexNumber(chunk.address)});
      }
      buffer->finish(0);
      runPeer("srec_cat",
              {"ours", format.srecCatName, "-fill", "0xFF", hexNumber(image.low()), hexNumber(image.high()), "-offset",
               "-" + hexNumber(image.low()), "-o", "ours.bin", "-binary"},
              folder);
      EXPECT_TRUE(folder.read("ours.bin") == image.filled());

      arguments.insert(arguments.end(), {"-o", "srec_cat.out", format.srecCatName, "-disable=data-count"});
      runPeer("srec_cat", arguments, folder);
      EXPECT_TRUE(readFilled(format.format, folder.file("srec_cat.out")) == hexNumber(image.low()) + ":" + image.filled());
      if (*format.objcopyName == '\0') continue;
      runPeer("objcopy",
              {"-I", "binary", "-O", format.objcopyName, "--change-addresses", hexNumber(image.low()), "chunk0.bin",
               "objcopy.out"},
              folder);
      EXPECT_TRUE(readFilled(format.format, folder.file("objcopy.out")) ==
                  hexNumber(image.low()) + ":" + image.chunks.front().bytes);
    }
  }
}

// Where the two extended address records of Intel HEX meet, our reader adds both:
// the linear value makes the upper half and the segment value times 16 is added on
// top, so a file that uses both keeps the meaning it had for the tool chains that
// wrote it that way. srec_cat lets the later record replace the earlier one.
TEST(PeerDifferences, IntelSegmentAndLinearAddressesAddUpWhereSrecCatKeepsTheLast) {
  REGMILL_NEED_PEER("srec_cat");
  ScratchFolder folder;
  std::string path = folder.write("both.hex", ":020000040001F9\n:020000021000EC\n:02001000ABCD76\n:00000001FF\n");
  EXPECT_EQ(testing::dumpSections(*loadLoadFile(LoadFileFormat::IntelHex, path)), "00020010: AB CD\n");
  runPeer("srec_cat", {"both.hex", "-intel", "-o", "peer.hex", "-intel"}, folder);
  EXPECT_EQ(testing::dumpSections(*loadLoadFile(LoadFileFormat::IntelHex, folder.file("peer.hex"))),
            "00010010: AB CD\n");
}

// Our S-record reader reads no S6 record (a 24-bit count of data records): it takes
// the checksum right behind the count byte, so a file with one fails there. srec_cat
// writes one once a file has more than 65535 data records, unless told not to count.
TEST(PeerDifferences, AnS6CountFromSrecCatFailsAtItsLine) {
  REGMILL_NEED_PEER("srec_cat");
  ScratchFolder folder;
  folder.write("image.bin", randomBytes(65536, 9));
  runPeer("srec_cat", {"image.bin", "-binary", "-o", "peer.srec", "-motorola", "-obs=1"}, folder);
  // The header, 65536 records of one byte, then the count.
  EXPECT_EQ(testing::thrownText([&] { loadLoadFile(LoadFileFormat::SRecord, folder.file("peer.srec")); }),
            "invalid checksum : line 65538");
}

}  // namespace
}  // namespace regmill
