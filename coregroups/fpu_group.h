// The floating-point unit group: context control, context address and default status
// control registers, with the Armv8-M security fields on core 33.
#pragma once
#include <cstdint>

#include "memorymap/svd_file.h"

namespace regmill {

// Appends "FPU" (or "FPU_NS") to the root; returns it, or null without a root.
MemoryMapElement* addFPUGroup(SVDFile& file, int32_t core, bool nonSecure);

}  // namespace regmill
