#include "coregroups/systick_group.h"

#include "coregroups/element_builders.h"
#include "coregroups/register_table.h"

namespace regmill {

namespace {

constexpr FieldRow kControlFields[] = {
    {"COUNTFLAG", 16, 1, "Counter Flag"},
    {"CLKSOURCE", 2, 1, "Timer Clock Source"},
    {"TICKINT", 1, 1, "Tick Interrupt Enable"},
    {"ENABLE", 0, 1, "Enable SysTick Timer"},
};
constexpr FieldRow kReloadFields[] = {
    {"RELOAD", 0, 24, "Value to load into the SYST_CVR when the counter is enabled and when it reaches 0"},
};
constexpr FieldRow kCurrentFields[] = {
    {"CURRENT", 0, 24, "The current value of the SysTick counter"},
};
constexpr FieldRow kCalibrationFields[] = {
    {"NOREF", 31, 1, "Indicates whether the device provides a reference clock to the processor"},
    {"SKEW", 30, 1, "Indicates whether the TENMS value is exact"},
    {"TENMS", 0, 24, "Reload value for 10ms (100Hz) timing, subject to system clock skew errors"},
};

constexpr RegisterRow kRegisters[] = {
    {"SYST_CSR", 0xe000e010, nullptr, nullptr, "SysTick Control and Status Register", kControlFields},
    {"SYST_RVR", 0xe000e014, nullptr, nullptr, "SysTick Reload Value Register", kReloadFields},
    {"SYST_CVR", 0xe000e018, nullptr, nullptr, "SysTick Current Value Register Register", kCurrentFields},
    {"SYST_CALIB", 0xe000e01c, nullptr, kReadOnly, "SysTick Calibration Value Register", kCalibrationFields},
};

}  // namespace

MemoryMapElement* addSysTickGroup(SVDFile& file, bool nonSecure) {
  MemoryMapElement* group = addCoreGroup(file, "SysTick", 0xe000e010, "24-bit System Timer", nonSecure);
  if (group != nullptr) addRegisterRows(file, group, kRegisters, CoreVariant{.nonSecure = nonSecure});
  return group;
}

}  // namespace regmill
