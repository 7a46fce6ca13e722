// Round trips with real peers: what our writers make, srec_cat reads to the same
// image; what srec_cat and objcopy write, our readers read to the same image. The
// images cross 0xFFFF/0x10000, 0xFFFFFF, a 64 KiB boundary high in 32-bit space and
// the top of memory, with gaps. Skips when a peer is not installed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "loadfile/load_file_formats.h"
#include "tests/loadfile/load_file_dump.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

namespace fs = std::filesystem;
using testing::ScratchFolder;

// The program's full path from PATH, or empty.
std::string peer(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path != nullptr ? path : "");
  for (std::string folder; std::getline(folders, folder, ':');)
    if (!folder.empty() && fs::exists(fs::path(folder) / name)) return (fs::path(folder) / name).string();
  return {};
}

#define REGMILL_NEED_PEER(name) \
  if (peer(name).empty()) GTEST_SKIP() << name << " is not installed (Debian packages srecord, binutils)"

void runPeer(const std::string& name, const std::vector<std::string>& arguments, const ScratchFolder& folder) {
  auto run = testing::runProgram(peer(name), arguments, folder.path());
  ASSERT_EQ(run.exitCode, 0) << name << ": " << run.err;
}

struct Chunk {
  uint32_t address;
  std::vector<uint8_t> bytes;
};

struct Image {
  const char* what;
  std::vector<Chunk> chunks;  // rising addresses, the first at the image's start

  uint32_t low() const { return chunks.front().address; }
  uint64_t high() const { return chunks.back().address + uint64_t{chunks.back().bytes.size()}; }
  // The bytes from low to high, gaps filled with 0xFF.
  std::string filled() const {
    std::string bytes(high() - low(), '\xFF');
    for (const Chunk& chunk : chunks)
      std::copy(chunk.bytes.begin(), chunk.bytes.end(), bytes.begin() + (chunk.address - low()));
    return bytes;
  }
  // The same behind its start address, as readFilled gives it.
  std::string placed() const;
};

std::vector<uint8_t> randomBytes(size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(generator());
  return bytes;
}

std::vector<Image> images() {
  return {
      {"around 0x10000", {{0xFFF0, randomBytes(40, 1)}, {0x10020, randomBytes(17, 2)}}},
      {"around 0x1000000", {{0xFFFFF0, randomBytes(300, 3)}, {0x1000200, randomBytes(5, 4)}}},
      {"32-bit addresses", {{0x08000000, randomBytes(70000, 5)}, {0x08011180, randomBytes(33, 6)}}},
      {"top of memory", {{0xFFFFFE00, randomBytes(200, 7)}, {0xFFFFFF10, randomBytes(240, 8)}}},
  };
}

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

std::string hexNumber(uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
  return text;
}

std::string Image::placed() const { return hexNumber(low()) + ":" + filled(); }

// What our reader makes of a file: its start address, then the image with its gaps filled.
std::string readFilled(LoadFileFormat format, const std::string& path) {
  auto file = loadLoadFile(format, path);
  file->makeContiguous(0xFF);
  const auto& section = *file->sections().sections.front();
  return hexNumber(section.address()) + ":" + std::string(reinterpret_cast<const char*>(section.data()), section.size());
}

TEST(PeerRoundTrip, SrecCatReadsWhatWeWrite) {
  REGMILL_NEED_PEER("srec_cat");
  for (const Image& image : images()) {
    for (const PeerFormat& format : kFormats) {
      SCOPED_TRACE(std::string(image.what) + " as " + format.extension);
      ScratchFolder folder;
      std::string ours = std::string("ours.") + format.extension;
      auto buffer = makeCodeBuffer(format.format, folder.file(ours));
      for (const Chunk& chunk : image.chunks) buffer->writeBytes(chunk.address, chunk.bytes.data(), chunk.bytes.size());
      buffer->finish(0);
      runPeer("srec_cat",
              {ours, format.srecCatName, "-fill", "0xFF", hexNumber(image.low()), hexNumber(image.high()), "-offset",
               "-" + hexNumber(image.low()), "-o", "peer.bin", "-binary"},
              folder);
      EXPECT_TRUE(folder.read("peer.bin") == image.filled());
    }
  }
}

// srec_cat is given each chunk as a binary file of its own, so that it writes the
// gaps as gaps; objcopy, which takes one binary file, gets the first chunk alone.
TEST(PeerRoundTrip, WeReadWhatSrecCatAndObjcopyWrite) {
  REGMILL_NEED_PEER("srec_cat");
  REGMILL_NEED_PEER("objcopy");
  for (const Image& image : images()) {
    for (const PeerFormat& format : kFormats) {
      SCOPED_TRACE(std::string(image.what) + " as " + format.extension);
      ScratchFolder folder;
      std::vector<std::string> arguments;
      for (size_t i = 0; i < image.chunks.size(); ++i) {
        const Chunk& chunk = image.chunks[i];
        std::string name = "chunk" + std::to_string(i) + ".bin";
        folder.write(name, std::string(chunk.bytes.begin(), chunk.bytes.end()));
        arguments.insert(arguments.end(), {name, "-binary", "-offset", hexNumber(chunk.address)});
      }
      arguments.insert(arguments.end(), {"-o", "srec_cat.out", format.srecCatName, "-disable=data-count"});
      runPeer("srec_cat", arguments, folder);
      EXPECT_TRUE(readFilled(format.format, folder.file("srec_cat.out")) == image.placed());
      if (*format.objcopyName == '\0') continue;
      runPeer("objcopy",
              {"-I", "binary", "-O", format.objcopyName, "--change-addresses", hexNumber(image.low()), "chunk0.bin",
               "objcopy.out"},
              folder);
      const auto& first = image.chunks.front().bytes;
      EXPECT_TRUE(readFilled(format.format, folder.file("objcopy.out")) ==
                  hexNumber(image.low()) + ":" + std::string(first.begin(), first.end()));
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
  auto bytes = randomBytes(65536, 9);
  folder.write("image.bin", std::string(bytes.begin(), bytes.end()));
  runPeer("srec_cat", {"image.bin", "-binary", "-o", "peer.srec", "-motorola", "-obs=1"}, folder);
  // The header, 65536 records of one byte, then the count.
  EXPECT_EQ(testing::thrownText([&] { loadLoadFile(LoadFileFormat::SRecord, folder.file("peer.srec")); }),
            "invalid checksum : line 65538");
}

}  // namespace
}  // namespace regmill
