// Reads a device description in the line-oriented DDF text format into a memory map:
// a Root holding one RegisterGroup per group line, each with the registers that line
// names and their bit fields. A malformed line is passed over, never an error.
#pragma once
#include "base/status.h"
#include "memorymap/memory_map.h"

namespace regmill {

// Opens the file in text mode, makes a Root the document's root and fills it. Fails,
// with the document untouched, only when the file can't be read. Elements that no
// group line names are freed before the function returns.
Status readDDF(const char* path, MemoryMap& document);

}  // namespace regmill
