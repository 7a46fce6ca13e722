#include "coregroups/scb_group.h"

#include "coregroups/element_builders.h"
#include "coregroups/register_table.h"
#include "memorymap/cores.h"

namespace regmill {

namespace {

// Which cores have a register or field.
bool notCore0(const CoreVariant& v) { return v.core != 0; }
bool core7(const CoreVariant& v) { return v.core == 7; }
bool core4(const CoreVariant& v) { return v.core == 4; }
bool core4or33(const CoreVariant& v) { return v.core == 4 || v.core == 33; }
bool core7or33(const CoreVariant& v) { return v.core == 7 || v.core == 33; }
bool notCore7or23(const CoreVariant& v) { return v.core != 7 && v.core != 23; }
bool securityExtension(const CoreVariant& v) { return hasSecurityExtension(v.core); }
bool armv7MBesides7(const CoreVariant& v) { return v.core != 7 && !securityExtension(v); }
bool cacheCores(const CoreVariant& v) { return v.core == 7 || securityExtension(v); }
bool coprocessorAccessCores(const CoreVariant& v) { return v.core == 4 || core7or33(v); }
bool lazyStackingCores(const CoreVariant& v) { return v.core >= 4; }
bool vectorResetCores(const CoreVariant& v) { return notCore0(v) && !securityExtension(v); }
// A core 0 without the vector table offset register is a plain Armv6-M part.
bool vectorTableOffset(const CoreVariant& v) { return v.core != 0 || v.hasVTOR; }
// Non-secure code cannot see the non-secure access control register.
bool secureCore33(const CoreVariant& v) { return core33(v) && !v.nonSecure; }

constexpr FieldRow kInterruptControllerTypeFields[] = {
    {"INTLINESNUM", 0, 4, "Total number of interrupt lines in groups of 32"},
};

// The auxiliary control register is implementation defined: each core has its own
// choice of these bits, and bit 2 means something else on core 7.
constexpr FieldRow kAuxiliaryControlFields[] = {
    {"EXTEXCLALL", 29, 1, "Allows external exclusive operations without an MPU", securityExtension},
    {"DISDYNADD", 26, 1, "Disables dynamic allocation of ADD and SUB instructions", core7},
    {"DISISSCH1", 21, 5, "Disables direct issue to pipeline 1 for classes of instructions", core7},
    {"DISDI", 16, 5, "Disables dual-issue for classes of instructions", core7},
    {"DISCRITAXIRUR", 15, 1, "Disables critical AXI Read-Under-Read", core7},
    {"DISBTACALLOC", 14, 1, "Disables allocation in the branch target address cache", core7},
    {"DISBTACREAD", 13, 1, "Disables reads from the branch target address cache", core7},
    {"DISITMATBFLUSH", 12, 1, "Disables ITM and DWT ATB flush", core7or33},
    {"DISRAMODE", 11, 1, "Disables dynamic read allocate mode for Write-Back Write-Allocate memory regions", core7},
    {"FPEXCODIS", 10, 1, "Disables floating-point exception outputs", core7or33},
    {"DISOOFP", 9, 1, "Disables floating-point instructions completing out of order with respect to integer instructions",
     core4or33},
    {"DISFPCA", 8, 1, "Disables automatic update of CONTROL.FPCA", core4},
    {"DISFOLD", 2, 1, "Disables dual-issue functionality", core7},
    {"DISFOLD", 2, 1, "Disables IT folding", notCore7or23},
    {"DISDEFWBUF", 1, 1, "Disables write buffer use during default memory map accesses", armv7MBesides7},
    {"DISMCYCINT", 0, 1, "Disables interruption of multi-cycle instructions", notCore7or23},
};

constexpr FieldRow kCPUIDFields[] = {
    {"IMPLEMENTER", 24, 8, "Implementer code"},
    {"VARIANT", 20, 4, "Variant number"},
    {"PARTNO", 4, 12, "Part number of the processor"},
    {"REVISION", 0, 4, "Revision number"},
};
constexpr FieldRow kInterruptControlStateFields[] = {
    {"NMIPENDSET", 31, 1, "NMI set-pending bit"},
    {"PENDSVSET", 28, 1, "PendSV set-pending bit"},
    {"PENDSVCLR", 27, 1, "PendSV clear-pending bit"},
    {"PENDSTSET", 26, 1, "SysTick exception set-pending bit"},
    {"PENDSTCLR", 25, 1, "SysTick exception clear-pending bit"},
    {"STTNS", 24, 1, "SysTick targets Non-secure", securityExtension},
    {"ISRPREEMPT", 23, 1, ""},
    {"ISRPENDING", 22, 1, "Interrupt pending flag, excluding NMI and Faults"},
    {"VECTPENDING", 12, 9, "Exception number of the highest priority pending enabled exception"},
    {"RETTOBASE", 11, 1, "Indicates whether there are preempted active exceptions", notCore0},
    {"VECTACTIVE", 0, 9, "Exception number of the currently active exception"},
};
constexpr FieldRow kVectorTableOffsetFields[] = {
    {"TBLOFF", 7, 25, "Vector table base offset"},
};
constexpr FieldRow kApplicationInterruptResetFields[] = {
    {"VECTKEY", 16, 16, "Register key"},
    {"ENDIANESS", 15, 1, "Data endianness bit"},
    {"PRIS", 14, 1, "Prioritize Secure exceptions", securityExtension},
    {"BFHFNMINS", 13, 1, "BusFault, HardFault and NMI target Non-secure", securityExtension},
    {"PRIGROUP", 8, 3, "Interrupt priority grouping field", notCore0},
    {"SYSRESETREQS", 3, 1, "System reset request accessible from the Secure state only", securityExtension},
    {"SYSRESETREQ", 2, 1, "System reset request"},
    {"VECTCLRACTIVE", 1, 1, ""},
    {"VECTRESET", 0, 1, "", vectorResetCores},
};
constexpr FieldRow kSystemControlFields[] = {
    {"SEVONPEND", 4, 1, "Send Event on Pending bit"},
    {"SLEEPDEEPS", 3, 1, "Controls whether SLEEPDEEP is accessible from the Non-secure state", securityExtension},
    {"SLEEPDEEP", 2, 1, "Controls whether the processor uses sleep or deep sleep as its low power mode"},
    {"SLEEPONEXIT", 1, 1, "Indicates sleep-on-exit when returning from Handler mode to Thread mode"},
};
constexpr FieldRow kConfigurationControlFields[] = {
    {"BP", 18, 1, "Branch prediction enable bit", core7or33},
    {"IC", 17, 1, "Instruction cache enable bit", core7or33},
    {"DC", 16, 1, "Data cache enable bit", core7or33},
    {"STKOFHFNMIGN", 10, 1, "Ignore stack limit violations in HardFault and NMI handlers", core33},
    {"STKALIGN", 9, 1, "Indicates stack alignment on exception entry"},
    {"BFHFNMIGN", 8, 1, "Enables handlers with priority -1 or -2 to ignore data BusFaults caused by load and store instructions", notCore0},
    {"DIV_0_TRP", 4, 1, "Enables faulting or halting when the processor executes an SDIV or UDIV instruction with a divisor of 0", notCore0},
    {"UNALIGN_TRP", 3, 1, "Enables unaligned access traps", notCore0},
    {"USERSETMPEND", 1, 1, "Enables unprivileged software access to the STIR", notCore0},
    {"NONBASETHRDENA", 0, 1, "Indicates how the processor enters Thread mode", notCore0},
};
constexpr FieldRow kHandlerPriority1Fields[] = {
    {"PRI_7(SecureFault)", 32, kPriorityWidth, "Priority of system handler 7 (SecureFault)", securityExtension},
    {"PRI_6(UsageFault)", 24, kPriorityWidth, "Priority of system handler 6 (UsageFault)"},
    {"PRI_5(BusFault)", 16, kPriorityWidth, "Priority of system handler 5 (BusFault)"},
    {"PRI_4(MemManage)", 8, kPriorityWidth, "Priority of system handler 4 (MemManage)"},
};
constexpr FieldRow kHandlerPriority2Fields[] = {
    {"PRI_11(SVCall)", 32, kPriorityWidth, "Priority of system handler 11 (SVCall)"},
};
constexpr FieldRow kHandlerPriority3Fields[] = {
    {"PRI_15(SysTick)", 32, kPriorityWidth, "Priority of system handler 15 (SysTick)"},
    {"PRI_14(PendSV)", 24, kPriorityWidth, "Priority of system handler 14 (PendSV)"},
    {"PRI_12(DebugMonitor)", 8, kPriorityWidth, "Priority of system handler 12 (DebugMonitor)", core7or33},
};
constexpr FieldRow kHandlerControlStateFields[] = {
    {"USGFAULTENA", 18, 1, "UsageFault enable Bit"},
    {"BUSFAULTENA", 17, 1, "BusFault enable bit"},
    {"MEMFAULTENA", 16, 1, "MemManage enable bit"},
    {"SVCALLPENDED", 15, 1, "SVCall pending bit"},
    {"BUSFAULTPENDED", 14, 1, "BusFault exception pending bit"},
    {"MEMFAULTPENDED", 13, 1, "MemManage exception pending bit"},
    {"USGFAULTPENDED", 12, 1, "UsageFault exception pending bit"},
    {"SYSTICKACT", 11, 1, "SysTick exception active bit"},
    {"PENDSVACT", 10, 1, "PendSV exception active bit"},
    {"MONITORACT", 8, 1, "Debug monitor active bit"},
    {"SVCALLACT", 7, 1, "SVCall active bit"},
    {"USGFAULTACT", 3, 1, "UsageFault exception active bit"},
    {"BUSFAULTACT", 1, 1, "BusFault exception active bit"},
    {"MEMFAULTACT", 0, 1, "MemManage exception active bit"},
};
constexpr FieldRow kMemManageFaultStatusFields[] = {
    {"MMARVALID", 7, 1, "MemManage Fault Address Register valid flag"},
    {"MLSPERR", 5, 1, "MemManage fault during floating-point lazy state preservation", lazyStackingCores},
    {"MSTKERR", 4, 1, "MemManage fault on stacking for exception entry"},
    {"MUNSTKERR", 3, 1, "MemManage fault on unstacking for a return from exception"},
    {"DACCVIOL", 1, 1, "Data access violation flag"},
    {"IACCVIOL", 0, 1, "Instruction access violation flag"},
};
constexpr FieldRow kBusFaultStatusFields[] = {
    {"BFARVALID", 7, 1, "BusFault Address Register valid flag"},
    {"LSPERR", 5, 1, "BusFault during floating-point lazy state preservation", lazyStackingCores},
    {"STKERR", 4, 1, "BusFault on stacking for exception entry"},
    {"UNSTKERR", 3, 1, "BusFault on unstacking for a return from exception"},
    {"IMPRECISERR", 2, 1, "Imprecise data bus error"},
    {"PRECISERR", 1, 1, "Precise data bus error"},
    {"IBUSERR", 0, 1, "Instruction bus error"},
};
constexpr FieldRow kUsageFaultStatusFields[] = {
    {"DIVBYZERO", 9, 1, "Divide by zero UsageFault"},
    {"UNALIGNED", 8, 1, "Unaligned access UsageFault"},
    {"STKOF", 4, 1, "Stack overflow UsageFault", core33},
    {"NOCP", 3, 1, "No coprocessor UsageFault"},
    {"INVPC", 2, 1, "Invalid PC load UsageFault, caused by an invalid EXC_RETURN value"},
    {"INVSTATE", 1, 1, "Invalid state UsageFault"},
    {"UNDEFINSTR", 0, 1, "Undefined instruction UsageFault"},
};
constexpr FieldRow kHardFaultStatusFields[] = {
    {"DEBUGEVT", 31, 1, ""},
    {"FORCED", 30, 1,
     "Indicates a forced hard fault, generated by escalation of a fault with configurable priority that cannot "
     "be handled, either because of priority or because it is disabled"},
    {"VECTTBL", 1, 1, "Indicates a BusFault on a vector table read during exception processing"},
};
constexpr FieldRow kDebugFaultStatusFields[] = {
    {"EXTERNAL", 4, 1, ""}, {"VCATCH", 3, 1, ""}, {"DWTTRAP", 2, 1, ""}, {"BKPT", 1, 1, ""}, {"HALTED", 0, 1, ""},
};
constexpr FieldRow kMemManageAddressFields[] = {
    {"ADDRESS", 0, 32, "Data address for a MemManage fault"},
};
constexpr FieldRow kBusFaultAddressFields[] = {
    {"ADDRESS", 0, 32, "Data address for a precise BusFault"},
};
constexpr FieldRow kAuxiliaryFaultStatusFields[] = {
    {"IMPDEF", 0, 32, "Implementation defined fault status"},
};
constexpr FieldRow kCacheLevelIdFields[] = {
    {"Ctype1", 0, 3, "Cache type for level 1"},
    {"Ctype2", 3, 3, "Cache type for level 2"},
    {"Ctype3", 6, 3, "Cache type for level 3"},
    {"Ctype4", 9, 3, "Cache type for level 4"},
    {"Ctype5", 12, 3, "Cache type for level 5"},
    {"Ctype6", 15, 3, "Cache type for level 6"},
    {"Ctype7", 18, 3, "Cache type for level 7"},
    {"LoUIS", 21, 3, "Level of Unification Inner Shareable"},
    {"LoC", 24, 3, "Level of Coherency"},
    {"LoUU", 27, 3, "Level of Unification Uniprocessor"},
    {"ICB", 30, 2, "Inner cache boundary", securityExtension},
};
constexpr FieldRow kCacheTypeFields[] = {
    {"IminLine", 0, 4, "Log2 of the number of words in the smallest cache line of all the instruction caches"},
    {"DminLine", 16, 4, "Log2 of the number of words in the smallest cache line of all the data and unified caches"},
    {"ERG", 20, 4, "Exclusives Reservation Granule"},
    {"CWG", 24, 4, "Cache Write-back Granule", securityExtension},
};
constexpr FieldRow kCacheSizeIdFields[] = {
    {"LineSize", 0, 3, "Number of words in each cache line, as log2 minus 2"},
    {"Associativity", 3, 10, "Associativity of the cache minus 1"},
    {"NumSets", 13, 15, "Number of sets in the cache minus 1"},
    {"WA", 28, 1, "Indicates support for write allocation"},
    {"RA", 29, 1, "Indicates support for read allocation"},
    {"WB", 30, 1, "Indicates support for write-back"},
    {"WT", 31, 1, "Indicates support for write-through"},
};
constexpr FieldRow kCacheSelectionFields[] = {
    {"InD", 0, 1, "Selects an instruction cache rather than a data or unified cache"},
    {"Level", 1, 3, "Cache level selected"},
};
constexpr FieldRow kCoprocessorAccessFields[] = {
    {"CP11", 22, 2, "Access privileges for coprocessor 11"},
    {"CP10", 20, 2, "Access privileges for coprocessor 10"},
    {"CP7", 14, 2, "Access privileges for coprocessor 7", core7or33},
    {"CP6", 12, 2, "Access privileges for coprocessor 6", core7or33},
    {"CP5", 10, 2, "Access privileges for coprocessor 5", core7or33},
    {"CP4", 8, 2, "Access privileges for coprocessor 4", core7or33},
    {"CP3", 6, 2, "Access privileges for coprocessor 3", core7or33},
    {"CP2", 4, 2, "Access privileges for coprocessor 2", core7or33},
    {"CP1", 2, 2, "Access privileges for coprocessor 1", core7or33},
    {"CP0", 0, 2, "Access privileges for coprocessor 0", core7or33},
};
constexpr const char* kNonSecureAccess =
    "Defines the Non-secure access permissions for both the FP Extension and coprocessors CP0 to CP7";
constexpr FieldRow kNonSecureAccessFields[] = {
    {"CP0", 0, 1, kNonSecureAccess},   {"CP1", 1, 1, kNonSecureAccess}, {"CP2", 2, 1, kNonSecureAccess},
    {"CP3", 3, 1, kNonSecureAccess},   {"CP4", 4, 1, kNonSecureAccess}, {"CP5", 5, 1, kNonSecureAccess},
    {"CP6", 6, 1, kNonSecureAccess},   {"CP7", 7, 1, kNonSecureAccess}, {"CP10", 10, 1, kNonSecureAccess},
    {"CP11", 11, 1, kNonSecureAccess},
};

// The Cortex-M7's own registers.
constexpr FieldRow kTightlyCoupledMemoryFields[] = {
    {"SZ", 3, 4, "Size of the tightly-coupled memory"},
    {"RETEN", 2, 1, "Retry phase enable"},
    {"RMW", 1, 1, "Read-modify-write enable"},
    {"EN", 0, 1, "Tightly-coupled memory enable"},
};
constexpr FieldRow kAHBPControlFields[] = {
    {"SZ", 1, 3, "Size of the AHBP memory region"},
    {"EN", 0, 1, "AHBP enable"},
};
constexpr FieldRow kL1CacheControlFields[] = {
    {"FORCEWT", 2, 1, "Forces write-through in the data cache"},
    {"ECCDIS", 1, 1, "Disables ECC in the instruction and data caches"},
    {"SIWT", 0, 1, "Shared cacheable-is-write-through"},
};
constexpr FieldRow kAHBSlaveControlFields[] = {
    {"INITCOUNT", 11, 5, "Fairness counter initialization value"},
    {"TPRI", 2, 9, "Threshold execution priority for AHBS traffic demotion"},
    {"CTL", 0, 2, "AHBS prioritization control"},
};
constexpr FieldRow kAuxiliaryBusFaultStatusFields[] = {
    {"AXIMTYPE", 8, 2, "Type of fault on the AXIM interface"},
    {"EPPB", 4, 1, "Asynchronous fault on the EPPB interface"},
    {"AXIM", 3, 1, "Asynchronous fault on the AXIM interface"},
    {"AHBP", 2, 1, "Asynchronous fault on the AHBP interface"},
    {"DTCM", 1, 1, "Asynchronous fault on the DTCM interface"},
    {"ITCM", 0, 1, "Asynchronous fault on the ITCM interface"},
};
constexpr FieldRow kErrorBankFields[] = {
    {"User-defined", 30, 2, "User-defined"}, {"Type of error", 17, 1, "Type of error"},
    {"RAM bank", 16, 1, "RAM bank"},         {"RAM location", 2, 14, "RAM location"},
    {"Locked", 1, 1, "Locked"},              {"Valid", 0, 1, "Valid"},
};

// The Armv6-M handler control register has the SVCall pending bit alone.
constexpr FieldRow kArmv6MHandlerControlStateFields[] = {
    {"SVCALLPENDED", 15, 1, "SVCall pending bit"},
};

constexpr std::span<const FieldRow> kNoFields{};

// The system control space in address order.
constexpr RegisterRow kSystemControlRows[] = {
    {"ICTR", 0xe000e004, nullptr, nullptr, "Interrupt Controller Type Register", kInterruptControllerTypeFields, notCore0},
    {"ACTLR", 0xe000e008, nullptr, nullptr, "Auxiliary Control Register", kAuxiliaryControlFields, notCore0},
    {"CPPWR", 0xe000e00c, nullptr, nullptr,
     "Specifies whether coprocessors are permitted to enter a non-retentive power state", kNoFields, core33},
    {"CPUID", 0xe000ed00, nullptr, kReadOnly, "CPUID Register", kCPUIDFields},
    {"ICSR", 0xe000ed04, nullptr, nullptr, "Interrupt Control and State Register", kInterruptControlStateFields},
    {"VTOR", 0xe000ed08, nullptr, nullptr, "Vector Table Offset Register", kVectorTableOffsetFields, vectorTableOffset},
    {"AIRCR", 0xe000ed0c, nullptr, nullptr, "Application Interrupt and Reset Control Register",
     kApplicationInterruptResetFields},
    {"SCR", 0xe000ed10, nullptr, nullptr, "System Control Register", kSystemControlFields},
    {"CCR", 0xe000ed14, nullptr, nullptr, "Configuration and Control Register", kConfigurationControlFields},
    {"SHPR1", 0xe000ed18, nullptr, nullptr, "System Handler Priority Register 1", kHandlerPriority1Fields, notCore0},
    {"SHPR2", 0xe000ed1c, nullptr, nullptr, "System Handler Priority Register 2", kHandlerPriority2Fields},
    {"SHPR3", 0xe000ed20, nullptr, nullptr, "System Handler Priority Register 3", kHandlerPriority3Fields},
    {"SHCSR", 0xe000ed24, nullptr, nullptr, "System Handler Control and State Register", kHandlerControlStateFields,
     notCore0},
    {"MMFSR", 0xe000ed28, "1", nullptr, "MemManage Fault Status Register", kMemManageFaultStatusFields, notCore0},
    {"BFSR", 0xe000ed29, "1", nullptr, "BusFault Status Register", kBusFaultStatusFields, notCore0},
    {"UFSR", 0xe000ed2a, "2", nullptr, "UsageFault Status Register", kUsageFaultStatusFields, notCore0},
    {"HFSR", 0xe000ed2c, nullptr, nullptr, "HardFault Status Register", kHardFaultStatusFields, notCore0},
    {"DFSR", 0xe000ed30, nullptr, nullptr, "Debug Fault Status Register", kDebugFaultStatusFields, notCore0},
    {"MMFAR", 0xe000ed34, nullptr, nullptr, "MemManage Fault Address Register", kMemManageAddressFields, notCore0},
    {"BFAR", 0xe000ed38, nullptr, nullptr, "BusFault Address Register", kBusFaultAddressFields, notCore0},
    {"AFSR", 0xe000ed3c, nullptr, nullptr, "Auxiliary Fault Status Register", kAuxiliaryFaultStatusFields, notCore0},
    {"ID_PFR0", 0xe000ed40, nullptr, kReadOnly, "Processor Feature Register 0", kNoFields, notCore0},
    {"ID_PFR1", 0xe000ed44, nullptr, kReadOnly, "Processor Feature Register 1", kNoFields, notCore0},
    {"ID_DFR0", 0xe000ed48, nullptr, kReadOnly, "Debug Feature Register 0", kNoFields, notCore0},
    {"ID_AFR0", 0xe000ed4c, nullptr, kReadOnly, "Auxilliary Feature Register 0", kNoFields, notCore0},
    {"ID_MMFR0", 0xe000ed50, nullptr, kReadOnly, "Memory Model Feature Register 0", kNoFields, notCore0},
    {"ID_MMFR1", 0xe000ed54, nullptr, kReadOnly, "Memory Model Feature Register 1", kNoFields, notCore0},
    {"ID_MMFR2", 0xe000ed58, nullptr, kReadOnly, "Memory Model Feature Register 2", kNoFields, notCore0},
    {"ID_MMFR3", 0xe000ed5c, nullptr, kReadOnly, "Memory Model Feature Register 3", kNoFields, notCore0},
    {"ID_ISAR0", 0xe000ed60, nullptr, kReadOnly, "Instruction Set Attribute Register 0", kNoFields, notCore0},
    {"ID_ISAR1", 0xe000ed64, nullptr, kReadOnly, "Instruction Set Attribute Register 1", kNoFields, notCore0},
    {"ID_ISAR2", 0xe000ed68, nullptr, kReadOnly, "Instruction Set Attribute Register 2", kNoFields, notCore0},
    {"ID_ISAR3", 0xe000ed6c, nullptr, kReadOnly, "Instruction Set Attribute Register 3", kNoFields, notCore0},
    {"ID_ISAR4", 0xe000ed70, nullptr, kReadOnly, "Instruction Set Attribute Register 4", kNoFields, notCore0},
    {"ID_ISAR5", 0xe000ed74, nullptr, kReadOnly, "Instruction Set Attribute Register 5", kNoFields, notCore0},
    {"CLIDR", 0xe000ed78, nullptr, kReadOnly, "Cache Level ID Register", kCacheLevelIdFields, cacheCores},
    {"CTR", 0xe000ed7c, nullptr, kReadOnly, "Cache Type Register", kCacheTypeFields, cacheCores},
    {"CCSIDR", 0xe000ed80, nullptr, kReadOnly, "Current Cache Size ID Register", kCacheSizeIdFields, cacheCores},
    {"CSSLER", 0xe000ed84, nullptr, nullptr, "Current Cache Selection Register", kCacheSelectionFields, cacheCores},
    {"CPACR", 0xe000ed88, nullptr, nullptr, "Coprocessor Access Control Register", kCoprocessorAccessFields,
     coprocessorAccessCores},
    {"NSACR", 0xe000ed8c, nullptr, nullptr, "Non-secure Access Control Register", kNonSecureAccessFields, secureCore33},
};

// The Cortex-M7's implementation registers end its group; they have no alias.
constexpr RegisterRow kCortexM7Rows[] = {
    {"CM7_ITCMCR", 0xE000EF90, nullptr, nullptr, "Instruction Tightly-Coupled Memory Control",
     kTightlyCoupledMemoryFields},
    {"CM7_DTCMCR", 0xE000EF94, nullptr, nullptr, "Data Tightly-Coupled Memory Control", kTightlyCoupledMemoryFields},
    {"CM7_AHBPCR", 0xE000EF98, nullptr, nullptr, "AHBP Control Register", kAHBPControlFields},
    {"CM7_CACR", 0xE000EF9C, nullptr, nullptr, "L1 Cache Control Register", kL1CacheControlFields},
    {"CM7_AHBSCR", 0xE000EFA0, nullptr, nullptr, "AHB Slave Control Register", kAHBSlaveControlFields},
    {"CM7_ABFSR", 0xE000EFA8, nullptr, nullptr, "Auxilliary Bus Fault Status Register", kAuxiliaryBusFaultStatusFields},
    {"IEBR0", 0xE000EFB0, nullptr, nullptr, "Instruction Error bank Register 0", kErrorBankFields},
    {"IEBR1", 0xE000EFB4, nullptr, nullptr, "Instruction Error bank Register 1", kErrorBankFields},
    {"DEBR0", 0xE000EFB8, nullptr, nullptr, "Data Error bank Register 0", kErrorBankFields},
    {"DEBR1", 0xE000EFBC, nullptr, nullptr, "Data Error bank Register 1", kErrorBankFields},
};

// Armv6-M has no fault status registers; its handler control and debug fault status
// registers close the group.
constexpr RegisterRow kArmv6MClosingRows[] = {
    {"SHCSR", 0xE000ED24, nullptr, nullptr, "System Handler Control and State Register",
     kArmv6MHandlerControlStateFields},
    {"DFSR", 0xE000ED30, nullptr, nullptr, "Debug Fault Status Register", kDebugFaultStatusFields},
};

}  // namespace

MemoryMapElement* addSCBGroup(SVDFile& file, int32_t core, uint32_t prioBits, bool nonSecure) {
  MemoryMapElement* group = addCoreGroup(file, "SCB", 0xe000e000, "System Control Block", nonSecure);
  if (group == nullptr) return nullptr;
  CoreVariant variant{core, file.hasVTOR, prioBits, nonSecure};
  addRegisterRows(file, group, kSystemControlRows, variant);
  if (core == 7) addRegisterRows(file, group, kCortexM7Rows, variant, Placement::Fixed);
  if (core == 0) addRegisterRows(file, group, kArmv6MClosingRows, variant, Placement::Fixed);
  return group;
}

}  // namespace regmill
