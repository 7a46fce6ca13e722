// Feeds arbitrary bytes to the CMSIS header scan through a file, as the converter
// reads it, and hands the names to a table as the driver does.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "driver/header_scan.h"
#include "memorymap/svd_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = "/tmp/regmill-header-fuzz-" + std::to_string(getpid()) + ".h";
  std::FILE* input = std::fopen(path.c_str(), "wb");
  if (input == nullptr) return 0;
  if (size != 0) std::fwrite(data, 1, size, input);
  std::fclose(input);

  regmill::SVDFile file;
  file.setInterruptTableSize(256);
  regmill::applyCmsisHeader(path.c_str(), file).ignore();
  return 0;
}
