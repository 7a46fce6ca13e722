#include "coregroups/scb_group.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using namespace regmill::testing;

const std::string kErrorBank =
    "User-defined 30:2, Type of error 17:1, RAM bank 16:1, RAM location 2:14, Locked 1:1, Valid 0:1";
// Each register in the form that most cores have; the changes for each core follow.
const std::string kCommon =
    "ICTR 0xe000e004: INTLINESNUM 0:4; ACTLR 0xe000e008: DISFOLD 2:1, DISDEFWBUF 1:1, DISMCYCINT 0:1; "
    "CPPWR 0xe000e00c:; CPUID 0xe000ed00 ReadOnly: IMPLEMENTER 24:8, VARIANT 20:4, PARTNO 4:12, REVISION 0:4; "
    "ICSR 0xe000ed04: NMIPENDSET 31:1, PENDSVSET 28:1, PENDSVCLR 27:1, PENDSTSET 26:1, PENDSTCLR 25:1, "
    "ISRPREEMPT 23:1, ISRPENDING 22:1, VECTPENDING 12:9, RETTOBASE 11:1, VECTACTIVE 0:9; VTOR 0xe000ed08: TBLOFF 7:25; "
    "SCR 0xe000ed10: SEVONPEND 4:1, SLEEPDEEP 2:1, SLEEPONEXIT 1:1; AIRCR 0xe000ed0c: VECTKEY 16:16, ENDIANESS 15:1, "
    "PRIGROUP 8:3, SYSRESETREQ 2:1, VECTCLRACTIVE 1:1, VECTRESET 0:1; CCR 0xe000ed14: STKALIGN 9:1, BFHFNMIGN 8:1, "
    "DIV_0_TRP 4:1, UNALIGN_TRP 3:1, USERSETMPEND 1:1, NONBASETHRDENA 0:1; SHPR1 0xe000ed18: PRI_6(UsageFault) 22:2, "
    "PRI_5(BusFault) 14:2, PRI_4(MemManage) 6:2; SHPR2 0xe000ed1c: PRI_11(SVCall) 30:2; "
    "SHPR3 0xe000ed20: PRI_15(SysTick) 30:2, PRI_14(PendSV) 22:2; SHCSR 0xe000ed24: USGFAULTENA 18:1, "
    "BUSFAULTENA 17:1, MEMFAULTENA 16:1, SVCALLPENDED 15:1, BUSFAULTPENDED 14:1, MEMFAULTPENDED 13:1, "
    "USGFAULTPENDED 12:1, SYSTICKACT 11:1, PENDSVACT 10:1, MONITORACT 8:1, SVCALLACT 7:1, USGFAULTACT 3:1, "
    "BUSFAULTACT 1:1, MEMFAULTACT 0:1; MMFSR 0xe000ed28 1: MMARVALID 7:1, MSTKERR 4:1, MUNSTKERR 3:1, DACCVIOL 1:1, "
    "IACCVIOL 0:1; BFSR 0xe000ed29 1: BFARVALID 7:1, STKERR 4:1, UNSTKERR 3:1, IMPRECISERR 2:1, PRECISERR 1:1, "
    "IBUSERR 0:1; UFSR 0xe000ed2a 2: DIVBYZERO 9:1, UNALIGNED 8:1, NOCP 3:1, INVPC 2:1, INVSTATE 1:1, UNDEFINSTR 0:1; "
    "HFSR 0xe000ed2c: DEBUGEVT 31:1, FORCED 30:1, VECTTBL 1:1; DFSR 0xe000ed30: EXTERNAL 4:1, VCATCH 3:1, DWTTRAP 2:1, "
    "BKPT 1:1, HALTED 0:1; MMFAR 0xe000ed34: ADDRESS 0:32; BFAR 0xe000ed38: ADDRESS 0:32; "
    "AFSR 0xe000ed3c: IMPDEF 0:32; ID_PFR0 0xe000ed40 ReadOnly:; ID_PFR1 0xe000ed44 ReadOnly:; "
    "ID_DFR0 0xe000ed48 ReadOnly:; ID_AFR0 0xe000ed4c ReadOnly:; ID_MMFR0 0xe000ed50 ReadOnly:; "
    "ID_MMFR1 0xe000ed54 ReadOnly:; ID_MMFR2 0xe000ed58 ReadOnly:; ID_MMFR3 0xe000ed5c ReadOnly:; "
    "ID_ISAR0 0xe000ed60 ReadOnly:; ID_ISAR1 0xe000ed64 ReadOnly:; ID_ISAR2 0xe000ed68 ReadOnly:; "
    "ID_ISAR3 0xe000ed6c ReadOnly:; ID_ISAR4 0xe000ed70 ReadOnly:; ID_ISAR5 0xe000ed74 ReadOnly:; "
    "CLIDR 0xe000ed78 ReadOnly: Ctype1 0:3, Ctype2 3:3, Ctype3 6:3, Ctype4 9:3, Ctype5 12:3, Ctype6 15:3, Ctype7 18:3, "
    "LoUIS 21:3, LoC 24:3, LoUU 27:3; CTR 0xe000ed7c ReadOnly: IminLine 0:4, DminLine 16:4, ERG 20:4; "
    "CSSLER 0xe000ed84: InD 0:1, Level 1:3; CCSIDR 0xe000ed80 ReadOnly: LineSize 0:3, Associativity 3:10, "
    "NumSets 13:15, WA 28:1, RA 29:1, WB 30:1, WT 31:1; CPACR 0xe000ed88: CP11 22:2, CP10 20:2, CP7 14:2, CP6 12:2, "
    "CP5 10:2, CP4 8:2, CP3 6:2, CP2 4:2, CP1 2:2, CP0 0:2; NSACR 0xe000ed8c: CP0 0:1, CP1 1:1, CP2 2:1, CP3 3:1, "
    "CP4 4:1, CP5 5:1, CP6 6:1, CP7 7:1, CP10 10:1, CP11 11:1; CM7_ITCMCR 0xE000EF90: SZ 3:4, RETEN 2:1, RMW 1:1, "
    "EN 0:1; CM7_DTCMCR 0xE000EF94: SZ 3:4, RETEN 2:1, RMW 1:1, EN 0:1; CM7_AHBPCR 0xE000EF98: SZ 1:3, EN 0:1; "
    "CM7_CACR 0xE000EF9C: FORCEWT 2:1, ECCDIS 1:1, SIWT 0:1; CM7_AHBSCR 0xE000EFA0: INITCOUNT 11:5, TPRI 2:9, CTL 0:2; "
    "CM7_ABFSR 0xE000EFA8: AXIMTYPE 8:2, EPPB 4:1, AXIM 3:1, AHBP 2:1, DTCM 1:1, ITCM 0:1; "
    "IEBR0 0xE000EFB0: " + kErrorBank + "; IEBR1 0xE000EFB4: " + kErrorBank + "; DEBR0 0xE000EFB8: " + kErrorBank +
    "; DEBR1 0xE000EFBC: " + kErrorBank;
const std::string kCore0 =
    "ICSR 0xe000ed04: NMIPENDSET 31:1, PENDSVSET 28:1, PENDSVCLR 27:1, PENDSTSET 26:1, PENDSTCLR 25:1, "
    "ISRPREEMPT 23:1, ISRPENDING 22:1, VECTPENDING 12:9, VECTACTIVE 0:9; AIRCR 0xe000ed0c: VECTKEY 16:16, "
    "ENDIANESS 15:1, SYSRESETREQ 2:1, VECTCLRACTIVE 1:1; CCR 0xe000ed14: STKALIGN 9:1; "
    "SHCSR 0xE000ED24: SVCALLPENDED 15:1; DFSR 0xE000ED30: EXTERNAL 4:1, VCATCH 3:1, DWTTRAP 2:1, BKPT 1:1, HALTED 0:1";
const std::string kLazyStacking =
    "MMFSR 0xe000ed28 1: MMARVALID 7:1, MLSPERR 5:1, MSTKERR 4:1, MUNSTKERR 3:1, DACCVIOL 1:1, IACCVIOL 0:1; "
    "BFSR 0xe000ed29 1: BFARVALID 7:1, LSPERR 5:1, STKERR 4:1, UNSTKERR 3:1, IMPRECISERR 2:1, PRECISERR 1:1, "
    "IBUSERR 0:1";
const std::string kCore4 =
    "ACTLR 0xe000e008: DISOOFP 9:1, DISFPCA 8:1, DISFOLD 2:1, DISDEFWBUF 1:1, DISMCYCINT 0:1; "
    "CPACR 0xe000ed88: CP11 22:2, CP10 20:2";
const std::string kCore7 =
    "ACTLR 0xe000e008: DISDYNADD 26:1, DISISSCH1 21:5, DISDI 16:5, DISCRITAXIRUR 15:1, DISBTACALLOC 14:1, "
    "DISBTACREAD 13:1, DISITMATBFLUSH 12:1, DISRAMODE 11:1, FPEXCODIS 10:1, DISFOLD 2:1; CCR 0xe000ed14: BP 18:1, "
    "IC 17:1, DC 16:1, STKALIGN 9:1, BFHFNMIGN 8:1, DIV_0_TRP 4:1, UNALIGN_TRP 3:1, USERSETMPEND 1:1, "
    "NONBASETHRDENA 0:1; SHPR3 0xe000ed20: PRI_15(SysTick) 30:2, PRI_14(PendSV) 22:2, PRI_12(DebugMonitor) 6:2";
const std::string kArmv8M =
    "ICSR 0xe000ed04: NMIPENDSET 31:1, PENDSVSET 28:1, PENDSVCLR 27:1, PENDSTSET 26:1, PENDSTCLR 25:1, STTNS 24:1, "
    "ISRPREEMPT 23:1, ISRPENDING 22:1, VECTPENDING 12:9, RETTOBASE 11:1, VECTACTIVE 0:9; "
    "AIRCR 0xe000ed0c: VECTKEY 16:16, ENDIANESS 15:1, PRIS 14:1, BFHFNMINS 13:1, PRIGROUP 8:3, SYSRESETREQS 3:1, "
    "SYSRESETREQ 2:1, VECTCLRACTIVE 1:1; SCR 0xe000ed10: SEVONPEND 4:1, SLEEPDEEPS 3:1, SLEEPDEEP 2:1, "
    "SLEEPONEXIT 1:1; SHPR1 0xe000ed18: PRI_7(SecureFault) 30:2, PRI_6(UsageFault) 22:2, PRI_5(BusFault) 14:2, "
    "PRI_4(MemManage) 6:2; CLIDR 0xe000ed78 ReadOnly: Ctype1 0:3, Ctype2 3:3, Ctype3 6:3, Ctype4 9:3, Ctype5 12:3, "
    "Ctype6 15:3, Ctype7 18:3, LoUIS 21:3, LoC 24:3, LoUU 27:3, ICB 30:2; CTR 0xe000ed7c ReadOnly: IminLine 0:4, "
    "DminLine 16:4, ERG 20:4, CWG 24:4";
const std::string kCore23 = "ACTLR 0xe000e008: EXTEXCLALL 29:1";
const std::string kCore33 =
    "ACTLR 0xe000e008: EXTEXCLALL 29:1, DISITMATBFLUSH 12:1, FPEXCODIS 10:1, DISOOFP 9:1, DISFOLD 2:1, DISMCYCINT 0:1; "
    "CCR 0xe000ed14: BP 18:1, IC 17:1, DC 16:1, STKOFHFNMIGN 10:1, STKALIGN 9:1, BFHFNMIGN 8:1, DIV_0_TRP 4:1, "
    "UNALIGN_TRP 3:1, USERSETMPEND 1:1, NONBASETHRDENA 0:1; UFSR 0xe000ed2a 2: DIVBYZERO 9:1, UNALIGNED 8:1, "
    "STKOF 4:1, NOCP 3:1, INVPC 2:1, INVSTATE 1:1, UNDEFINSTR 0:1";
const std::string kPriorityBits3 =
    "SHPR2 0xe000ed1c: PRI_11(SVCall) 29:3; SHPR3 0xe000ed20: PRI_15(SysTick) 29:3, PRI_14(PendSV) 21:3";
const std::string kPriorityBits0 =
    "SHPR1 0xe000ed18: PRI_7(SecureFault) 32:0, PRI_6(UsageFault) 24:0, PRI_5(BusFault) 16:0, PRI_4(MemManage) 8:0; "
    "SHPR2 0xe000ed1c: PRI_11(SVCall) 32:0; SHPR3 0xe000ed20: PRI_15(SysTick) 32:0, PRI_14(PendSV) 24:0, "
    "PRI_12(DebugMonitor) 8:0";

const std::string kFaultsAndFeatures =
    "CPUID ICSR VTOR AIRCR SCR CCR SHPR1 SHPR2 SHPR3 SHCSR MMFSR BFSR UFSR HFSR DFSR MMFAR BFAR AFSR ID_PFR0 ID_PFR1 "
    "ID_DFR0 ID_AFR0 ID_MMFR0 ID_MMFR1 ID_MMFR2 ID_MMFR3 ID_ISAR0 ID_ISAR1 ID_ISAR2 ID_ISAR3 ID_ISAR4 ID_ISAR5";
const std::string kArmv7M = "ICTR ACTLR " + kFaultsAndFeatures;
const std::string kCaches = " CLIDR CTR CCSIDR CSSLER";

// The expected line of each register by name, the last listing that has it winning.
std::map<std::string, std::string> expectedLines(const std::vector<std::string>& listings) {
  std::map<std::string, std::string> expected;
  for (const std::string& text : listings)
    for (size_t start = 0, end = 0; start < text.size(); start = end + 2) {
      end = std::min(text.find("; ", start), text.size());
      expected[text.substr(start, text.find(' ', start) - start)] = text.substr(start, end - start);
    }
  return expected;
}

MemoryMapElement* scbFor(CoreDocument& document, int32_t core, bool hasVTOR, uint32_t prioBits = 2) {
  document.file.hasVTOR = hasVTOR;
  return addSCBGroup(document.file, core, prioBits, false);
}

// Every field has a description; these have it empty.
const std::set<std::string> kEmptyDescriptions{"ISRPREEMPT", "VECTCLRACTIVE", "VECTRESET", "DEBUGEVT", "EXTERNAL",
                                               "VCATCH",     "DWTTRAP",       "BKPT",      "HALTED"};

TEST(SCBGroup, RegistersFieldsAndDescriptionsOfEachCore) {
  struct Case {
    int32_t core;
    bool hasVTOR;
    uint32_t prioBits;
    std::string registers;
    std::vector<std::string> listings;  // the later ones change the earlier ones
  } cases[] = {
      {0, false, 2, "CPUID ICSR AIRCR SCR CCR SHPR2 SHPR3 SHCSR DFSR", {kCommon, kCore0}},
      {0, true, 3, "CPUID ICSR VTOR AIRCR SCR CCR SHPR2 SHPR3 SHCSR DFSR", {kCommon, kCore0, kPriorityBits3}},
      {3, false, 2, kArmv7M, {kCommon}},
      {4, true, 2, kArmv7M + " CPACR", {kCommon, kLazyStacking, kCore4}},
      {5, true, 2, kArmv7M, {kCommon, kLazyStacking}},
      {7, true, 2,
       kArmv7M + kCaches + " CPACR CM7_ITCMCR CM7_DTCMCR CM7_AHBPCR CM7_CACR CM7_AHBSCR CM7_ABFSR IEBR0 IEBR1 "
                           "DEBR0 DEBR1",
       {kCommon, kLazyStacking, kCore7}},
      {23, true, 2, kArmv7M + kCaches, {kCommon, kLazyStacking, kArmv8M, kCore23}},
      {33, false, 0, "ICTR ACTLR CPPWR " + kFaultsAndFeatures + kCaches + " CPACR NSACR",
       {kCommon, kLazyStacking, kArmv8M, kCore33, kPriorityBits0}},
  };
  for (const Case& c : cases) {
    std::map<std::string, std::string> expected = expectedLines(c.listings);
    CoreDocument document;
    MemoryMapElement* group = scbFor(document, c.core, c.hasVTOR, c.prioBits);
    EXPECT_EQ(attributes(group), "name=SCB start=0xe000e000 description=System Control Block");
    EXPECT_EQ(names(group), c.registers) << c.core;
    for (MemoryMapElement* registerElement : children(group)) {
      EXPECT_EQ(registerLine(registerElement), expected[value(registerElement, "name")]) << c.core;
      for (MemoryMapElement* field : children(registerElement)) {
        std::string description = value(field, "description");
        EXPECT_EQ(description == "?" ? "missing" : description.empty() ? "empty" : "text",
                  std::string(kEmptyDescriptions.count(value(field, "name")) == 1 ? "empty" : "text"))
            << c.core << " " << attributes(field);
      }
    }
  }
}

TEST(SCBGroup, AttributeOrderAndPriorityBitsBeyondTheByte) {
  CoreDocument document;
  MemoryMapElement* group = scbFor(document, 3, true);
  EXPECT_EQ(attributes(child(group, "UFSR")),
            "name=UFSR start=0xe000ed2a size=2 description=UsageFault Status Register");
  EXPECT_EQ(attributes(children(child(group, "SHPR2"))[0]),
            "name=PRI_11(SVCall) start=30 size=2 description=Priority of system handler 11 (SVCall)");
  // More priority bits than a byte holds give a plain negative start, not a wrapped one.
  EXPECT_EQ(registerLine(child(scbFor(document, 0, false, 40), "SHPR2")), "SHPR2 0xe000ed1c: PRI_11(SVCall) -8:40");
}

}  // namespace
}  // namespace regmill
