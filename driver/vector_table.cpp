#include "driver/vector_table.h"

#include <cstdio>

#include "memorymap/svd_file.h"

namespace regmill {

bool writeVectorTable(const SVDFile& file, const std::string& name, uint32_t firstEntry, std::string& fileName) {
  fileName = name + ".vec";
  // Text mode: lines end in a line feed on this system.
  std::FILE* stream = std::fopen(fileName.c_str(), "w");
  if (stream == nullptr) return false;
  // The first entry indexes the name table directly. It is an unsigned number, so the
  // loop counts in 64 bits: an entry above the highest interrupt writes nothing.
  for (int64_t index = firstEntry; index <= file.highestInterrupt; ++index) {
    const char* interrupt = file.interruptName(static_cast<int32_t>(index));
    if (interrupt == nullptr)
      std::fputs("ISR_RESERVED\n", stream);
    else
      std::fprintf(stream, "ISR_HANDLER %s_IRQHandler\n", interrupt);
  }
  std::fclose(stream);
  return true;
}

}  // namespace regmill
