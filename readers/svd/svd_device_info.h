// The device data beside the register tree: interrupt names into the file's table,
// and the core values of the "cpu" element.
#pragma once
#include <string_view>

#include "memorymap/svd_file.h"
#include "xml/xml_node.h"

namespace regmill {

// "INT_" in front of a name is dropped; failing that, "_IRQ" at its end.
std::string_view strippedInterruptName(std::string_view name);

// Every "interrupt" child of the peripheral: each "name" with the next "value" behind
// it, the value decimal and below the table size, the last definition of a number
// winning. Nothing is stored when the file has no table.
void readInterrupts(SVDFile& file, const XMLElement* peripheral);

// Core number and VTOR from the "name" (CM0, CM0PLUS or CM0+, CM3, CM4, CM7, CM23,
// CM33; others leave both), MPU and FPU from "1" or "true", the priority bits from a
// decimal "nvicPrioBits" (0 when there is none).
void readCoreValues(SVDFile& file, const XMLElement* cpu);

}  // namespace regmill
