// Registers of the core groups as data: a table row per register with its fields, and
// the conditions under which a core has a row. The group generators hold their rows
// in static tables and hand them to addRegisterRows, which makes the elements.
#pragma once
#include <cstdint>
#include <span>

#include "memorymap/memory_map.h"

namespace regmill {

// What decides whether a row exists and how it is named and placed.
struct CoreVariant {
  int32_t core = 0;
  bool hasVTOR = false;
  uint32_t prioBits = 0;
  bool nonSecure = false;
};

// A condition on the variant; a null one holds for every variant.
using CoreCondition = bool (*)(const CoreVariant&);

// Of the cores with an FPU, only core 33 has the security and stack limit fields.
inline bool core33(const CoreVariant& v) { return v.core == 33; }

// A field that is as wide as the implemented priority bits: it occupies the top bits
// of the byte below `bit`, so its start is bit - prioBits.
constexpr uint8_t kPriorityWidth = 0;

enum class Placement : uint8_t {
  Aliased,  // name and address move to the non-secure alias
  Fixed,    // plain name and "0x%08X" address, the same in both groups
};

struct FieldRow {
  const char* name;
  uint8_t bit;
  uint8_t width;  // kPriorityWidth for a priority field
  const char* description;
  CoreCondition exists = nullptr;
};

struct RegisterRow {
  const char* name;
  uint32_t address;
  const char* size;    // null: no size attribute
  const char* access;  // null: no access attribute
  const char* description;
  std::span<const FieldRow> fields;
  CoreCondition exists = nullptr;
};

// Appends a group of core registers to the root and returns it, or null if the
// document has no root.
MemoryMapElement* addCoreGroup(MemoryMap& map, const char* name, uint32_t address, const char* description,
                               bool nonSecure, Placement placement = Placement::Aliased);

// Appends the rows that exist for the variant to the group, each with its fields in
// the order of the table.
void addRegisterRows(MemoryMap& map, MemoryMapElement* group, std::span<const RegisterRow> rows,
                     const CoreVariant& variant, Placement placement = Placement::Aliased);

}  // namespace regmill
