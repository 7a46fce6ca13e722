// Which registers each core has, and a few rows of each group written out by hand:
// the layout rules cannot tell a field at the wrong bit or a register missing.
#include <gtest/gtest.h>

#include "coregroups/fpu_group.h"
#include "coregroups/mpu_group.h"
#include "coregroups/sau_group.h"
#include "coregroups/scb_group.h"
#include "coregroups/systick_group.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

using namespace regmill::testing;

const std::string kFaultsAndFeatures =
    "CPUID ICSR VTOR AIRCR SCR CCR SHPR1 SHPR2 SHPR3 SHCSR MMFSR BFSR UFSR HFSR DFSR MMFAR BFAR AFSR ID_PFR0 ID_PFR1 "
    "ID_DFR0 ID_AFR0 ID_MMFR0 ID_MMFR1 ID_MMFR2 ID_MMFR3 ID_ISAR0 ID_ISAR1 ID_ISAR2 ID_ISAR3 ID_ISAR4 ID_ISAR5";
const std::string kCaches = " CLIDR CTR CCSIDR CSSLER";

TEST(CoreGroupRows, SystemControlRegistersOfEachCore) {
  struct Case { int32_t core; bool hasVTOR; std::string registers; } cases[] = {
      {0, false, "CPUID ICSR AIRCR SCR CCR SHPR2 SHPR3 SHCSR DFSR"},
      {0, true, "CPUID ICSR VTOR AIRCR SCR CCR SHPR2 SHPR3 SHCSR DFSR"},
      {3, false, "ICTR ACTLR " + kFaultsAndFeatures},
      {4, true, "ICTR ACTLR " + kFaultsAndFeatures + " CPACR"},
      {5, false, "ICTR ACTLR " + kFaultsAndFeatures},
      {7, true, "ICTR ACTLR " + kFaultsAndFeatures + kCaches + " CPACR CM7_ITCMCR CM7_DTCMCR CM7_AHBPCR "
                       "CM7_CACR CM7_AHBSCR CM7_ABFSR IEBR0 IEBR1 DEBR0 DEBR1"},
      {23, true, "ICTR ACTLR " + kFaultsAndFeatures + kCaches},
      {33, false, "ICTR ACTLR CPPWR " + kFaultsAndFeatures + kCaches + " CPACR NSACR"},
  };
  for (const Case& c : cases) {
    CoreDocument document;
    document.file.hasVTOR = c.hasVTOR;
    EXPECT_EQ(names(addSCBGroup(document.file, c.core, 2, false)), c.registers) << c.core;
  }
}

TEST(CoreGroupRows, RowsOfEachGroup) {
  struct Case { int32_t core; uint32_t prioBits; bool nonSecure; const char* group; std::string line; } cases[] = {
      {3, 2, false, "SysTick", "SYST_CSR 0xe000e010: COUNTFLAG 16:1, CLKSOURCE 2:1, TICKINT 1:1, ENABLE 0:1"},
      {33, 2, true, "SysTick", "SYST_CVR_NS 0xe002e018: CURRENT 0:24"},
      {0, 2, false, "SCB", "AIRCR 0xe000ed0c: VECTKEY 16:16, ENDIANESS 15:1, SYSRESETREQ 2:1, VECTCLRACTIVE 1:1"},
      {3, 2, false, "SCB", "UFSR 0xe000ed2a 2: DIVBYZERO 9:1, UNALIGNED 8:1, NOCP 3:1, INVPC 2:1, INVSTATE 1:1, "
                           "UNDEFINSTR 0:1"},
      {0, 40, false, "SCB", "SHPR2 0xe000ed1c: PRI_11(SVCall) -8:40"},  // beyond a byte: negative, not wrapped
      {4, 2, false, "SCB", "ACTLR 0xe000e008: DISOOFP 9:1, DISFPCA 8:1, DISFOLD 2:1, DISDEFWBUF 1:1, DISMCYCINT 0:1"},
      {23, 2, false, "SCB", "ICSR 0xe000ed04: NMIPENDSET 31:1, PENDSVSET 28:1, PENDSVCLR 27:1, PENDSTSET 26:1, "
                            "PENDSTCLR 25:1, STTNS 24:1, ISRPREEMPT 23:1, ISRPENDING 22:1, VECTPENDING 12:9, "
                            "RETTOBASE 11:1, VECTACTIVE 0:9"},
      {23, 2, true, "SCB", "ICTR_NS 0xe002e004: INTLINESNUM 0:4"},
      {23, 2, false, "SCB", "ACTLR 0xe000e008: EXTEXCLALL 29:1"},
      {33, 2, false, "SCB", "ACTLR 0xe000e008: EXTEXCLALL 29:1, DISITMATBFLUSH 12:1, FPEXCODIS 10:1, DISOOFP 9:1, "
                            "DISFOLD 2:1, DISMCYCINT 0:1"},
      {33, 0, false, "SCB", "SHPR1 0xe000ed18: PRI_7(SecureFault) 32:0, PRI_6(UsageFault) 24:0, PRI_5(BusFault) 16:0, "
                            "PRI_4(MemManage) 8:0"},
      {33, 3, false, "SCB", "SHPR3 0xe000ed20: PRI_15(SysTick) 29:3, PRI_14(PendSV) 21:3, PRI_12(DebugMonitor) 5:3"},
      {33, 2, false, "SCB", "CCR 0xe000ed14: BP 18:1, IC 17:1, DC 16:1, STKOFHFNMIGN 10:1, STKALIGN 9:1, "
                            "BFHFNMIGN 8:1, DIV_0_TRP 4:1, UNALIGN_TRP 3:1, USERSETMPEND 1:1, NONBASETHRDENA 0:1"},
      {4, 2, false, "MPU", "MPU_RASR 0xe000eda0: XN 28:1, AP 24:3, TEX 19:3, S 18:1, C 17:1, B 16:1, SRD 8:8, "
                           "SIZE 1:5, ENABLE 0:1"},
      {33, 2, true, "MPU", "MPU_TYPE_NS 0xe002ed90 ReadOnly: IREGION 16:8, DREGION 8:8, SEPARATE 0:1"},
      {4, 2, false, "FPU", "FPCCR 0xe000ef34: ASPEN 31:1, LSPEN 30:1, MONRDY 8:1, BFRDY 6:1, MMRDY 5:1, HFRDY 4:1, "
                           "THREAD 3:1, USER 1:1, LSPACT 0:1"},
      {33, 2, false, "FPU", "FPCCR 0xe000ef34: ASPEN 31:1, LSPEN 30:1, LSPENS 29:1, CLRONRET 28:1, CLRONRETS 27:1, "
                            "TS 26:1, UFRDY 10:1, SPLIMVIOL 9:1, MONRDY 8:1, SFRDY 7:1, BFRDY 6:1, MMRDY 5:1, "
                            "HFRDY 4:1, THREAD 3:1, S 2:1, USER 1:1, LSPACT 0:1"},
      {23, 2, true, "FPU", "FPCAR_NS 0xe002ef38: ADDRESSS 3:29"},
      {33, 2, false, "SAU", "SFAR 0xE000EDE8:"},
  };
  for (const Case& c : cases) {
    CoreDocument document;
    SVDFile& file = document.file;
    const std::string group = c.group;
    MemoryMapElement* built = group == "SysTick" ? addSysTickGroup(file, c.nonSecure)
                              : group == "SCB"   ? addSCBGroup(file, c.core, c.prioBits, c.nonSecure)
                              : group == "MPU"   ? addMPUGroup(file, c.core, c.nonSecure)
                              : group == "FPU"   ? addFPUGroup(file, c.core, c.nonSecure)
                                                 : addSAUGroup(file);
    std::string name = c.line.substr(0, c.line.find(' '));
    EXPECT_EQ(registerLine(child(built, name)), c.line) << c.core;
  }
}

}  // namespace
}  // namespace regmill
