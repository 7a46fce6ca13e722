#include "coregroups/mpu_group.h"

#include "coregroups/element_builders.h"
#include "coregroups/register_table.h"
#include "memorymap/cores.h"

namespace regmill {

namespace {

constexpr FieldRow kTypeFields[] = {
    {"IREGION", 16, 8, "Number of supported instruction regions"},
    {"DREGION", 8, 8, "Number of supported data regions"},
    {"SEPARATE", 0, 1, "Indicates support for separate instruction and data address maps"},
};
constexpr FieldRow kControlFields[] = {
    {"PRIVDEFENA", 2, 1, "Enables the default memory map as a background region for privileged access"},
    {"HFNMIENA", 1, 1, "Enables the MPU during HardFault, NMI and FAULTMASK handlers"},
    {"ENABLE", 0, 1, "Enable MPU"},
};
constexpr FieldRow kRegionNumberFields[] = {
    {"REGION", 0, 8, "Region selected by the region base address and attribute registers"},
};

constexpr RegisterRow kCommonRegisters[] = {
    {"MPU_TYPE", 0xe000ed90, nullptr, kReadOnly, "MPU Type Register", kTypeFields},
    {"MPU_CTRL", 0xe000ed94, nullptr, nullptr, "MPU Control Register", kControlFields},
    {"MPU_RNR", 0xe000ed98, nullptr, nullptr, "MPU Region Number Register", kRegionNumberFields},
};

constexpr FieldRow kArmv7MBaseAddressFields[] = {
    {"ADDR", 5, 27, "Region base address"},
    {"VALID", 4, 1, "Region number valid bit"},
    {"REGION", 0, 4, "Region number to update when VALID is set"},
};
constexpr FieldRow kArmv7MAttributeSizeFields[] = {
    {"XN", 28, 1, "Instruction access disable bit"},
    {"AP", 24, 3, "Access permission field"},
    {"TEX", 19, 3, "Type extension field"},
    {"S", 18, 1, "Shareable bit"},
    {"C", 17, 1, "Cacheable bit"},
    {"B", 16, 1, "Bufferable bit"},
    {"SRD", 8, 8, "Subregion disable bits"},
    {"SIZE", 1, 5, "Size of the region, as log2 of its bytes minus 1"},
    {"ENABLE", 0, 1, "Region enable bit"},
};
constexpr RegisterRow kArmv7MRegisters[] = {
    {"MPU_RBAR", 0xe000ed9c, nullptr, nullptr, "MPU Region Base Address Register", kArmv7MBaseAddressFields},
    {"MPU_RASR", 0xe000eda0, nullptr, nullptr, "MPU Region Attribute and Size Register", kArmv7MAttributeSizeFields},
};

constexpr FieldRow kArmv8MBaseAddressFields[] = {
    {"BASE", 5, 27, "Base Address"},
    {"SH", 3, 2, "Shareability"},
    {"AP", 1, 2, "Access permissions"},
    {"XN", 0, 1, "Execute Never"},
};
constexpr FieldRow kArmv8MLimitAddressFields[] = {
    {"LIMIT", 5, 27, "Limit Address"},
    {"AttrIndx", 1, 3, "Attribute Index"},
    {"EN", 0, 1, "Region enable bit"},
};
constexpr FieldRow kAttributeIndirection0Fields[] = {
    {"Attr3", 24, 8, "Attribute 3"},
    {"Attr2", 16, 8, "Attribute 2"},
    {"Attr1", 8, 8, "Attribute 1"},
    {"Attr0", 0, 8, "Attribute 0"},
};
constexpr FieldRow kAttributeIndirection1Fields[] = {
    {"Attr7", 24, 8, "Attribute 7"},
    {"Attr6", 16, 8, "Attribute 6"},
    {"Attr5", 8, 8, "Attribute 5"},
    {"Attr4", 0, 8, "Attribute 4"},
};
constexpr RegisterRow kArmv8MRegisters[] = {
    {"MPU_RBAR", 0xe000ed9c, nullptr, nullptr, "MPU Region Base Address Register", kArmv8MBaseAddressFields},
    {"MPU_RLAR", 0xe000eda0, nullptr, nullptr, "MPU Region Limit Address Register", kArmv8MLimitAddressFields},
    {"MPU_MAIR0", 0xe000edc0, nullptr, nullptr, "MPU Memory Attribution Indirect Register 0",
     kAttributeIndirection0Fields},
    {"MPU_MAIR1", 0xe000edc4, nullptr, nullptr, "MPU Memory Attribution Indirect Register 1",
     kAttributeIndirection1Fields},
};

}  // namespace

MemoryMapElement* addMPUGroup(SVDFile& file, int32_t core, bool nonSecure) {
  MemoryMapElement* group = addCoreGroup(file, "MPU", 0xe000ed90, "Memory Protection Unit", nonSecure);
  if (group == nullptr) return nullptr;
  CoreVariant variant{.core = core, .nonSecure = nonSecure};
  addRegisterRows(file, group, kCommonRegisters, variant);
  if (hasSecurityExtension(core))
    addRegisterRows(file, group, kArmv8MRegisters, variant);
  else
    addRegisterRows(file, group, kArmv7MRegisters, variant);
  return group;
}

}  // namespace regmill
