// The element helpers that every core group generator shares: each makes one element
// of the memory map, sets its attributes in the fixed order name, start, size, access,
// description, and appends it to its parent, which owns it from then on. A null text
// leaves its attribute out; an empty text writes an empty attribute.
#pragma once
#include <cstdint>
#include <string>

#include "memorymap/memory_map.h"

namespace regmill {

MemoryMapElement* addGroupElement(MemoryMap& map, MemoryMapElement* parent, const char* start,
                                  const char* size, const char* name, const char* description);
MemoryMapElement* addRegisterElement(MemoryMap& map, MemoryMapElement* parent, const char* start,
                                     const char* size, const char* access, const char* name,
                                     const char* description);
MemoryMapElement* addFieldElement(MemoryMap& map, MemoryMapElement* parent, const char* start,
                                  const char* size, const char* name, const char* description);

// "0x" and the address in lower-case hexadecimal without padding; the non-secure alias
// of a core register lies 0x20000 above it.
std::string hexAddress(uint32_t address, bool nonSecure);
// "0x" and eight upper-case hexadecimal digits: the form of the fixed addresses.
std::string paddedHexAddress(uint32_t address);
// The name, with "_NS" behind it for the non-secure alias.
std::string nonSecureName(const char* name, bool nonSecure);

// The one access right that the core groups write; all other registers read and write.
constexpr const char* kReadOnly = "ReadOnly";

// The non-secure alias of a core register lies this far above the secure one.
constexpr uint32_t kNonSecureAliasOffset = 0x20000;

}  // namespace regmill
