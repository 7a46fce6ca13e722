// The system control block group: the system control space of the core, whose
// registers and fields depend on the core number (0 for Armv6-M, 3, 4 and 7 for
// Armv7-M, 23 and 33 for Armv8-M; any other number counts as a core that is not 0),
// on whether a core 0 has the vector table offset register, and on the number of
// implemented priority bits.
#pragma once
#include <cstdint>

#include "memorymap/svd_file.h"

namespace regmill {

// Appends "SCB" (or "SCB_NS") to the root; hasVTOR comes from the file. Returns the
// group, or null if the document has no root.
MemoryMapElement* addSCBGroup(SVDFile& file, int32_t core, uint32_t prioBits, bool nonSecure);

}  // namespace regmill
