// The assembler vector table written beside the memory map: one ISR_HANDLER or
// ISR_RESERVED macro call per table entry, from the first vector entry up to the
// highest interrupt in use.
#pragma once
#include <cstdint>
#include <string>

namespace regmill {

class SVDFile;

// Writes "<name>.vec"; false when it cannot be opened. `fileName` gets the built name.
bool writeVectorTable(const SVDFile& file, const std::string& name, uint32_t firstEntry, std::string& fileName);

}  // namespace regmill
