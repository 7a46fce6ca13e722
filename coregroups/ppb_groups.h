// The register groups of the core's private peripheral bus, added in one sequence for
// a device description that lacks them: NVIC, SysTick, SCB, FPU, MPU and SAU, each
// with its non-secure alias on a core with the security extension (23 and 33).
#pragma once
#include "coregroups/nvic_group.h"  // the NVIC group of its own, which runs before this sequence
#include "memorymap/svd_file.h"

namespace regmill {

// Adds each group that no register group of the same name (ignoring case, anywhere
// in the tree) already stands for, from the file's core data, then computes the
// addresses of the whole tree. Returns false, and changes nothing, if the document
// has no root.
bool addPPBGroups(SVDFile& file);

}  // namespace regmill
