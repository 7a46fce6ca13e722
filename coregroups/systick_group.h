// The SysTick group: the 24-bit system timer's four registers.
#pragma once
#include "memorymap/svd_file.h"

namespace regmill {

// Appends "SysTick" (or "SysTick_NS") to the root; returns it, or null without a root.
MemoryMapElement* addSysTickGroup(SVDFile& file, bool nonSecure);

}  // namespace regmill
