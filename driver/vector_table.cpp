#include "driver/vector_table.h"

#include <cstdio>
#include <cstring>

#include "base/atomic_file.h"
#include "memorymap/svd_file.h"

namespace regmill {

namespace {

// Line feed, carriage return, vertical tab and form feed each end a line for some
// assembler; a tab stays, as a header's tab-indented names keep theirs.
bool breaksLine(const char* name) { return std::strpbrk(name, "\n\r\v\f") != nullptr; }

}  // namespace

std::string vectorTableFileName(const std::string& name) { return name + ".vec"; }

Status writeVectorTable(const SVDFile& file, const std::string& fileName, uint32_t firstEntry) {
  // The first entry indexes the name table directly. It is an unsigned number, so the
  // loop counts in 64 bits: an entry above the highest interrupt writes nothing.
  for (int64_t index = firstEntry; index <= file.highestInterrupt; ++index) {
    const char* interrupt = file.interruptName(static_cast<int32_t>(index));
    if (interrupt != nullptr && breaksLine(interrupt))
      return Status::failure("interrupt " + std::to_string(index) + " has a line break in its name", fileName);
  }
  // Lines end in a line feed, as text mode writes them on this system.
  return writeFileAtomically(fileName, [&](std::FILE* stream) {
    for (int64_t index = firstEntry; index <= file.highestInterrupt; ++index) {
      const char* interrupt = file.interruptName(static_cast<int32_t>(index));
      if (interrupt == nullptr)
        std::fputs("ISR_RESERVED\n", stream);
      else
        std::fprintf(stream, "ISR_HANDLER %s_IRQHandler\n", interrupt);
    }
  });
}

}  // namespace regmill
