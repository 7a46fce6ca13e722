// The security attribution unit group of an Armv8-M core: fixed text, no alias.
#pragma once
#include "memorymap/svd_file.h"

namespace regmill {

// Appends "SAU" to the root; returns it, or null without a root.
MemoryMapElement* addSAUGroup(SVDFile& file);

}  // namespace regmill
