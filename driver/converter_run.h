// One run of the converter, strictly in the order the tool promises: core data and
// interrupt names, the input, removals, the NVIC and core groups, the include
// element, then the memory-map file and last the vector table. Nothing is written
// before every earlier step has succeeded.
#pragma once

#include "driver/command_line.h"

namespace regmill {

class SVDFile;

// Runs the conversion into `file`; messages go to stderr. Gives the exit code.
int runConverter(const RunOptions& options, SVDFile& file);

}  // namespace regmill
