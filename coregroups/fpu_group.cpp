#include "coregroups/fpu_group.h"

#include "coregroups/register_table.h"

namespace regmill {

namespace {

constexpr FieldRow kContextControlFields[] = {
    {"ASPEN", 31, 1, "Automatic state preservation enable"},
    {"LSPEN", 30, 1, "Lazy state preservation enable"},
    {"LSPENS", 29, 1, "Lazy state preservation enable is writable from the Secure state only", core33},
    {"CLRONRET", 28, 1, "Clear floating-point caller saved registers on exception return", core33},
    {"CLRONRETS", 27, 1, "Clear on return is writable from the Secure state only", core33},
    {"TS", 26, 1, "Treat floating-point registers as Secure", core33},
    {"UFRDY", 10, 1, "UsageFault ready", core33},
    {"SPLIMVIOL", 9, 1, "Stack pointer limit violation", core33},
    {"MONRDY", 8, 1, "DebugMonitor ready"},
    {"SFRDY", 7, 1, "SecureFault ready", core33},
    {"BFRDY", 6, 1, "BusFault ready"},
    {"MMRDY", 5, 1, "MemManage ready"},
    {"HFRDY", 4, 1, "HardFault ready"},
    {"THREAD", 3, 1, "Thread mode"},
    {"S", 2, 1, "Security status of the floating-point context", core33},
    {"USER", 1, 1, "User privilege"},
    {"LSPACT", 0, 1, "Lazy state preservation active"},
};
constexpr FieldRow kContextAddressFields[] = {
    {"ADDRESSS", 3, 29, "Address of the space reserved for the floating-point registers on the exception stack frame"},
};
constexpr FieldRow kDefaultStatusControlFields[] = {
    {"AHP", 26, 1, "Default value for FPSCR.AHP"},
    {"DN", 25, 1, "Default value for FPSCR.DN"},
    {"FZ", 24, 1, "Default value for FPSCR.FZ"},
    {"RMode", 22, 2, "Default value for FPSCR.RMode"},
};

constexpr RegisterRow kRegisters[] = {
    {"FPCCR", 0xe000ef34, nullptr, nullptr, "Floating-point Context Control Register", kContextControlFields},
    {"FPCAR", 0xe000ef38, nullptr, nullptr, "Floating-point Context Address Register", kContextAddressFields},
    {"FPDSCR", 0xe000ef3c, nullptr, nullptr, "Floating-point Default Status Control Register",
     kDefaultStatusControlFields},
};

}  // namespace

MemoryMapElement* addFPUGroup(SVDFile& file, int32_t core, bool nonSecure) {
  MemoryMapElement* group = addCoreGroup(file, "FPU", 0xe000ef34, "Floating Point Unit", nonSecure);
  if (group != nullptr) addRegisterRows(file, group, kRegisters, CoreVariant{.core = core, .nonSecure = nonSecure});
  return group;
}

}  // namespace regmill
