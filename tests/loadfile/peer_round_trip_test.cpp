// Round trips with real peers: what our writers make, srec_cat reads to the same
// image; what srec_cat and objcopy write, our readers read to the same image. The
// images cross 0xFFFF/0x10000, 0xFFFFFF, a 64 KiB boundary high in 32-bit space and
// the top of memory, with gaps. Skips when a peer is not installed. Where the peers
// read differently (both Intel extended addresses in one file, srec_cat's S6 count
// above 65535 records) the reader tests pin our own reading.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "loadfile/load_file_formats.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

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

std::string randomBytes(size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(generator());
  return bytes;
}

// Chunks at rising addresses, the first at the image's start.
using Image = std::vector<std::pair<uint32_t, std::string>>;
const Image kImages[] = {
    {{0xFFF0, randomBytes(40, 1)}, {0x10020, randomBytes(17, 2)}},
    {{0xFFFFF0, randomBytes(300, 3)}, {0x1000200, randomBytes(5, 4)}},
    {{0x08000000, randomBytes(70000, 5)}, {0x08011180, randomBytes(33, 6)}},
    {{0xFFFFFE00, randomBytes(200, 7)}, {0xFFFFFF10, randomBytes(240, 8)}},
};

struct PeerFormat {
  LoadFileFormat format;
  const char* srecCatName;
  const char* objcopyName;  // empty where objcopy has no such format
};

// What our reader makes of a file: its start address, then the image with its gaps filled.
std::string readFilled(LoadFileFormat format, const std::string& path) {
  auto file = loadLoadFile(format, path);
  file->makeContiguous(0xFF);
  const auto& section = *file->sections().sections.front();
  return hexNumber(section.address()) + ":" + std::string(reinterpret_cast<const char*>(section.data()), section.size());
}

// srec_cat is given each chunk as a binary file of its own, so that it writes the
// gaps as gaps; objcopy, which takes one binary file, gets the first chunk alone.
TEST(PeerRoundTrip, EachImageInEachFormatBothWays) {
  REGMILL_SKIP_WITHOUT_PROGRAM("srec_cat");
  REGMILL_SKIP_WITHOUT_PROGRAM("objcopy");
  for (const Image& image : kImages) {
    uint32_t low = image.front().first;
    uint64_t high = image.back().first + uint64_t{image.back().second.size()};
    std::string filled(high - low, '\xFF');  // gaps filled with 0xFF
    for (const auto& [address, bytes] : image) filled.replace(address - low, bytes.size(), bytes);
    for (PeerFormat format : {PeerFormat{LoadFileFormat::IntelHex, "-intel", "ihex"},
                              {LoadFileFormat::SRecord, "-motorola", "srec"}, {LoadFileFormat::TIHex, "-ti-txt", ""}}) {
      SCOPED_TRACE(hexNumber(low) + " as " + format.srecCatName);
      ScratchFolder folder;
      auto buffer = makeCodeBuffer(format.format, folder.file("ours"));
      std::vector<std::string> arguments;
      for (const auto& [address, bytes] : image) {
        buffer->writeBytes(address, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        std::string name = folder.write("chunk" + std::to_string(arguments.size()) + ".bin", bytes);
        arguments.insert(arguments.end(), {name, "-binary", "-offset", hexNumber(address)});
      }
      buffer->finish(0);
      runPeer("srec_cat",
              {"ours", format.srecCatName, "-fill", "0xFF", hexNumber(low), hexNumber(high), "-offset",
               "-" + hexNumber(low), "-o", "ours.bin", "-binary"},
              folder);
      EXPECT_TRUE(folder.read("ours.bin") == filled);

      arguments.insert(arguments.end(), {"-o", "srec_cat.out", format.srecCatName, "-disable=data-count"});
      runPeer("srec_cat", arguments, folder);
      EXPECT_TRUE(readFilled(format.format, folder.file("srec_cat.out")) == hexNumber(low) + ":" + filled);
      if (*format.objcopyName == '\0') continue;
      runPeer("objcopy",
              {"-I", "binary", "-O", format.objcopyName, "--change-addresses", hexNumber(low), "chunk0.bin", "objcopy.out"},
              folder);
      EXPECT_TRUE(readFilled(format.format, folder.file("objcopy.out")) == hexNumber(low) + ":" + image.front().second);
    }
  }
}

}  // namespace
}  // namespace regmill
