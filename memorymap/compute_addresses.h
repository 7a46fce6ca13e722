// computeAddresses: the one walk that turns the start and size texts of a
// memory-map tree into the numeric address and size of each element. Texts are
// evaluated as expressions; a start that begins with "+" is relative to the
// address its parent settled. A formula that fails reads as 0 and stops nothing.
#pragma once
#include <cstdint>

#include "memorymap/memory_map.h"

namespace regmill {

// Fills element and all memory-map elements below it; base is the address that
// relative starts of element itself add to (0 for a root).
void computeAddresses(MemoryMapElement* element, uint32_t base);

}  // namespace regmill
