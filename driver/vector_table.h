// The assembler vector table written beside the memory map: one ISR_HANDLER or
// ISR_RESERVED macro call per table entry, from the first vector entry up to the
// highest interrupt in use.
#pragma once
#include <cstdint>
#include <string>

#include "base/status.h"

namespace regmill {

class SVDFile;

// The file name of the table `name`: "<name>.vec".
std::string vectorTableFileName(const std::string& name);

// Writes the table to `fileName`, replacing the file only once it is complete. An
// interrupt name that holds a line break would put a line of its own into the
// assembler source: the table is refused then, and nothing is written.
Status writeVectorTable(const SVDFile& file, const std::string& fileName, uint32_t firstEntry);

}  // namespace regmill
