// One run of the converter, strictly in the order the tool promises: core data and
// interrupt names, the input, removals, the NVIC and core groups, the include
// element, then the memory-map file and last the vector table. Nothing is written
// before every earlier step has succeeded.
#pragma once

#include "driver/command_line.h"

namespace regmill {

class SVDFile;

// Runs the conversion into `file` and gives the exit code. This is the one place
// where a failure of any step becomes the user's line on stderr; running out of
// memory is such a failure too.
int runConverter(const RunOptions& options, SVDFile& file);

}  // namespace regmill
