// The NVIC group: one register per 32 interrupts in each of the enable, pending,
// active (and, on a secure Armv8-M core, target) rows, and one priority register per
// four interrupts, with a bit field for every interrupt that has a name.
#pragma once
#include <cstdint>

#include "memorymap/svd_file.h"

namespace regmill {

// Appends "NVIC" (or "NVIC_NS" for the non-secure alias) to the root. Bit i of each
// register takes its name from entry irqStart + i of the interrupt table; the numbering
// of registers and bits does not move. Returns the group, or null if the document has
// no root.
MemoryMapElement* addNVICGroup(SVDFile& file, int32_t core, uint32_t prioBits, uint32_t irqStart,
                               bool withDescription, bool nonSecure);

// The registers cover interrupts 0 to this at most: the architecture's priority
// registers end with interrupt 495.
constexpr int32_t kLastNVICInterrupt = 495;

}  // namespace regmill
