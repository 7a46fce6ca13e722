// Feeds arbitrary bytes to each of the four text readers through a file, as a load
// command reads it. Whatever a reader accepts is written back in its own format,
// read again, and must give the same image.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <unistd.h>

#include "base/hexception.h"
#include "loadfile/load_file_formats.h"

namespace {

using regmill::LoadFileFormat;

// An image spanning more than this is not made contiguous: filling it would only
// cost time.
constexpr uint64_t kLargestCompared = uint64_t{1} << 16;

std::string scratchPath(const char* what) {
  return "/tmp/regmill-loadfile-fuzz-" + std::to_string(getpid()) + "." + what;
}

// The span of the sections, or 0 when one of them runs past the top of memory
// (written back, its bytes would wrap to address 0).
uint64_t spanOf(regmill::StandardLoadFile& file) {
  uint64_t low = UINT64_MAX, high = 0;
  for (const auto& section : file.sections().sections) {
    uint64_t end = uint64_t{section->address()} + section->size();
    if (end > (uint64_t{1} << 32)) return 0;
    low = std::min<uint64_t>(low, section->address());
    high = std::max(high, end);
  }
  return high > low ? high - low : 0;
}

std::string contiguousImage(regmill::StandardLoadFile& file) {
  file.makeContiguous(0xA5);
  const auto& section = *file.sections().sections.front();
  return std::to_string(section.address()) + ":" +
         std::string(reinterpret_cast<const char*>(section.data()), section.size());
}

void readWriteAndReadBack(LoadFileFormat format, const std::string& input) {
  std::unique_ptr<regmill::StandardLoadFile> file;
  try {
    file = regmill::loadLoadFile(format, input);
  } catch (const regmill::HException&) {
    return;
  }
  uint64_t span = spanOf(*file);
  const std::string output = scratchPath("out");
  regmill::saveLoadFile(*file, format, output);
  if (span == 0 || span > kLargestCompared) return;
  auto again = regmill::loadLoadFile(format, output);
  if (contiguousImage(*file) != contiguousImage(*again)) {
    std::fprintf(stderr, "the image changed on its way through the writer\n");
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input = scratchPath("in");
  std::FILE* file = std::fopen(input.c_str(), "wb");
  if (file == nullptr) return 0;
  if (size != 0) std::fwrite(data, 1, size, file);
  std::fclose(file);
  for (LoadFileFormat format :
       {LoadFileFormat::IntelHex, LoadFileFormat::SRecord, LoadFileFormat::TIHex, LoadFileFormat::HexList})
    readWriteAndReadBack(format, input);
  return 0;
}
