// Feeds arbitrary bytes to the DDF reader through a file, as the converter reads it,
// and prints the resulting map, so that the tree it builds is walked as well.
#include <cstdint>
#include <cstdio>
#include <string>

#include <unistd.h>

#include "memorymap/svd_file.h"
#include "readers/ddf_reader.h"

namespace {

// One input file per fuzzing process, rewritten for every input.
const std::string& inputPath() {
  static const std::string path = "/tmp/regmill-ddf-fuzz-" + std::to_string(getpid()) + ".ddf";
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::FILE* input = std::fopen(inputPath().c_str(), "wb");
  if (input == nullptr) return 0;
  if (size != 0) std::fwrite(data, 1, size, input);
  std::fclose(input);

  regmill::SVDFile document;
  if (!regmill::readDDF(inputPath().c_str(), document)) return 0;
  if (std::FILE* sink = std::fopen("/dev/null", "wb")) {
    document.write(sink, 2, 0).ignore();
    std::fclose(sink);
  }
  return 0;
}
