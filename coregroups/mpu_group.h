// The memory protection unit group, in the Armv7-M shape (region base address and
// attribute/size registers) or, for cores 23 and 33, the Armv8-M shape (base and limit
// registers with memory attribute indirection).
#pragma once
#include <cstdint>

#include "memorymap/svd_file.h"

namespace regmill {

// Appends "MPU" (or "MPU_NS") to the root; returns it, or null without a root.
MemoryMapElement* addMPUGroup(SVDFile& file, int32_t core, bool nonSecure);

}  // namespace regmill
