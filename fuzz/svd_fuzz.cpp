// Feeds arbitrary bytes to the SVD reader as the text of a device description and
// prints the map it builds. Any crash, leak, hang or undefined behaviour is a
// finding. The input's length picks the reader flags and whether -ignore-name is
// given, so that every flag is reached without a header in front of the text.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "memorymap/svd_file.h"
#include "readers/svd/svd_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The reader takes zero-terminated text; bytes behind a zero are not seen.
  const std::string text(reinterpret_cast<const char*>(data), size);
  regmill::SVDFile file;
  file.setInterruptTableSize(256);
  const uint32_t flags = static_cast<uint32_t>(size & 15);
  const char* ignoreName = (size & 16) != 0 ? "RES" : nullptr;
  // A small element limit keeps an input with huge arrays from filling the memory.
  regmill::loadSVDFromText(file, text.c_str(), flags, ignoreName, size_t{1} << 16).ignore();

  char* buffer = nullptr;
  size_t length = 0;
  std::FILE* stream = open_memstream(&buffer, &length);
  if (stream == nullptr) std::abort();
  file.write(stream, 2, 0).ignore();
  std::fclose(stream);
  std::free(buffer);
  return 0;
}
