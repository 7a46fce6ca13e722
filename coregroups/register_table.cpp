#include "coregroups/register_table.h"

#include <string>

#include "coregroups/element_builders.h"

namespace regmill {

namespace {

bool holds(CoreCondition condition, const CoreVariant& variant) {
  return condition == nullptr || condition(variant);
}

void addField(MemoryMap& map, MemoryMapElement* registerElement, const FieldRow& field,
              const CoreVariant& variant) {
  std::string start;
  std::string size;
  if (field.width == kPriorityWidth) {
    // Computed wide, so that a priority bit count above the byte gives a plain
    // negative start instead of a wrapped number.
    start = std::to_string(int64_t{field.bit} - int64_t{variant.prioBits});
    size = std::to_string(variant.prioBits);
  } else {
    start = std::to_string(field.bit);
    size = std::to_string(field.width);
  }
  addFieldElement(map, registerElement, start.c_str(), size.c_str(), field.name, field.description);
}

std::string placedName(const char* name, bool nonSecure, Placement placement) {
  return placement == Placement::Aliased ? nonSecureName(name, nonSecure) : std::string(name);
}

std::string placedStart(uint32_t address, bool nonSecure, Placement placement) {
  return placement == Placement::Aliased ? hexAddress(address, nonSecure) : paddedHexAddress(address);
}

}  // namespace

MemoryMapElement* addCoreGroup(MemoryMap& map, const char* name, uint32_t address, const char* description,
                               bool nonSecure, Placement placement) {
  MemoryMapElement* root = map.root();
  if (root == nullptr) return nullptr;
  return addGroupElement(map, root, placedStart(address, nonSecure, placement).c_str(), nullptr,
                         placedName(name, nonSecure, placement).c_str(), description);
}

void addRegisterRows(MemoryMap& map, MemoryMapElement* group, std::span<const RegisterRow> rows,
                     const CoreVariant& variant, Placement placement) {
  for (const RegisterRow& row : rows) {
    if (!holds(row.exists, variant)) continue;
    MemoryMapElement* registerElement =
        addRegisterElement(map, group, placedStart(row.address, variant.nonSecure, placement).c_str(), row.size,
                           row.access, placedName(row.name, variant.nonSecure, placement).c_str(), row.description);
    for (const FieldRow& field : row.fields)
      if (holds(field.exists, variant)) addField(map, registerElement, field, variant);
  }
}

}  // namespace regmill
