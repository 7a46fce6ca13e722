#include "coregroups/sau_group.h"

#include "coregroups/register_table.h"

namespace regmill {

namespace {

constexpr FieldRow kControlFields[] = {
    {"ALLNS", 1, 1, "All Non-secure"},
    {"ENABLE", 0, 1, "Enable the SAU"},
};
constexpr FieldRow kTypeFields[] = {
    {"SREGION", 0, 8, "Number of implemented SAU regions"},
};
constexpr FieldRow kRegionNumberFields[] = {
    {"REGION", 0, 8, "Region selected by the region base and limit address registers"},
};
constexpr FieldRow kBaseAddressFields[] = {
    {"BADDR", 5, 27, "Base address of the region"},
};
constexpr FieldRow kLimitAddressFields[] = {
    {"LADDR", 5, 27, "Limit address of the region"},
    {"NSC", 1, 1, "Non-secure callable"},
    {"ENABLE", 0, 1, "Region enable"},
};
constexpr FieldRow kSecureFaultStatusFields[] = {
    {"LSERR", 7, 1, "Lazy state error flag"},
    {"SFARVALID", 6, 1, "Secure fault address valid"},
    {"LSPERR", 5, 1, "Lazy state preservation error flag"},
    {"INVTRAN", 4, 1, "Invalid transition flag"},
    {"AUVIOL", 3, 1, "Attribution unit violation flag"},
    {"INVER", 2, 1, "Invalid exception return flag"},
    {"INVIS", 1, 1, "Invalid integrity signature flag"},
    {"INVEP", 0, 1, "Invalid entry point"},
};

constexpr RegisterRow kRegisters[] = {
    {"SAU_CTRL", 0xE000EDD0, nullptr, nullptr, "SAU Control Register", kControlFields},
    {"SAU_TYPE", 0xE000EDD4, nullptr, nullptr, "SAU Type Register", kTypeFields},
    {"SAU_RNR", 0xE000EDD8, nullptr, nullptr, "SAU Region Number Register", kRegionNumberFields},
    {"SAU_RBAR", 0xE000EDDC, nullptr, nullptr, "SAU Region Base Address Register", kBaseAddressFields},
    {"SAU_RLAR", 0xE000EDE0, nullptr, nullptr, "SAU Region Limit Address Register", kLimitAddressFields},
    {"SFSR", 0xE000EDE4, nullptr, nullptr, "Secure Fault Status Register", kSecureFaultStatusFields},
    {"SFAR", 0xE000EDE8, nullptr, nullptr, "Secure Fault Address Register", {}},
};

}  // namespace

MemoryMapElement* addSAUGroup(SVDFile& file) {
  MemoryMapElement* group =
      addCoreGroup(file, "SAU", 0xE000EDD0, "Security Attribution Unit", false, Placement::Fixed);
  if (group != nullptr) addRegisterRows(file, group, kRegisters, CoreVariant{}, Placement::Fixed);
  return group;
}

}  // namespace regmill
