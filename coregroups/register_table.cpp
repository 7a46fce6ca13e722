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

MemoryMapElement* addRegister(MemoryMap& map, MemoryMapElement* group, const RegisterRow& row,
                              const CoreVariant& variant) {
  bool aliased = row.placement == Placement::Aliased;
  std::string name = aliased ? nonSecureName(row.name, variant.nonSecure) : std::string(row.name);
  std::string start = aliased ? hexAddress(row.address, variant.nonSecure) : paddedHexAddress(row.address);
  return addRegisterElement(map, group, start.c_str(), row.size, row.access, name.c_str(), row.description);
}

}  // namespace

void addRegisterRows(MemoryMap& map, MemoryMapElement* group, std::span<const RegisterRow> rows,
                     const CoreVariant& variant) {
  for (const RegisterRow& row : rows) {
    if (!holds(row.exists, variant)) continue;
    MemoryMapElement* registerElement = addRegister(map, group, row, variant);
    for (const FieldRow& field : row.fields)
      if (holds(field.exists, variant)) addField(map, registerElement, field, variant);
  }
}

}  // namespace regmill
