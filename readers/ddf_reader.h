// Reads a device description in the line-oriented DDF text format into a memory map:
// a Root holding one RegisterGroup per group line, each with the registers that line
// names and their bit fields. A malformed line is passed over, never an error.
#pragma once
#include <QString>

#include "memorymap/memory_map.h"

namespace regmill {

// Opens the file in text mode, makes a Root the document's root and fills it. False,
// with the document untouched, only when the file can't be opened. Elements that no
// group line names are freed before the function returns.
bool readDDF(const char* path, MemoryMap& document);
// The same with the path in the local 8-bit encoding.
bool readDDF(const QString& path, MemoryMap& document);

}  // namespace regmill
