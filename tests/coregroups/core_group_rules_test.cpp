// Rules that every generated core group keeps, for every core variant the generators
// know and every number of priority bits: fields fit their register and don't
// overlap, registers don't overlap and lie in the system control space, the
// non-secure alias repeats the secure group 0x20000 higher with "_NS" names, and the
// NVIC's bits follow the interrupt numbers. The rules cannot tell a field at the
// wrong bit or a register missing: which registers each core has, and a few rows of
// each group, are written out by hand. Last, which groups the PPB option adds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>

#include "coregroups/element_builders.h"
#include "coregroups/fpu_group.h"
#include "coregroups/mpu_group.h"
#include "coregroups/nvic_group.h"
#include "coregroups/ppb_groups.h"
#include "coregroups/sau_group.h"
#include "coregroups/scb_group.h"
#include "coregroups/systick_group.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

using namespace regmill::testing;

constexpr int32_t kCores[] = {0, 3, 4, 5, 7, 23, 33};  // 5 stands for any other core number
constexpr uint32_t kAliasOffset = 0x20000;
const std::initializer_list<std::pair<int, const char*>> kInterrupts = {
    {0, "WDT"}, {1, "RTC"}, {5, "UART"}, {31, "TIMER31"}, {32, "TIMER32"}, {47, "LAST"}};

struct Variant {
  int32_t core;
  bool hasVTOR;
  uint32_t prioBits;
  bool nonSecure;
};

struct Built {
  std::string stem;
  MemoryMapElement* group;
};

std::vector<Built> buildAll(CoreDocument& document, const Variant& v) {
  document.file.hasVTOR = v.hasVTOR;
  return {{"NVIC", addNVICGroup(document.file, v.core, v.prioBits, 0, true, v.nonSecure)},
          {"SysTick", addSysTickGroup(document.file, v.nonSecure)},
          {"SCB", addSCBGroup(document.file, v.core, v.prioBits, v.nonSecure)},
          {"MPU", addMPUGroup(document.file, v.core, v.nonSecure)},
          {"FPU", addFPUGroup(document.file, v.core, v.nonSecure)},
          {"SAU", v.nonSecure ? nullptr : addSAUGroup(document.file)}};
}

int64_t wholeNumber(const std::string& text, int base) {
  size_t used = 0;
  int64_t number = std::stoll(text, &used, base);
  EXPECT_EQ(used, text.size()) << "not a whole number: " << text;
  return number;
}

std::string hexText(uint64_t address, bool padded) {
  char text[24];
  std::snprintf(text, sizeof text, padded ? "0x%08llX" : "0x%llx", static_cast<unsigned long long>(address));
  return text;
}

// The attribute names in their order, and those of `order` that the element has.
std::string attributeNames(const MemoryMapElement* element) {
  std::string text;
  for (const XMLAttribute* a = element->attributes(); a != nullptr; a = a->next) text += std::string(a->name) + " ";
  return text;
}
std::string presentInOrder(const MemoryMapElement* element, std::initializer_list<const char*> order) {
  std::string text;
  for (const char* name : order)
    if (element->hasAttribute(name)) text += std::string(name) + " ";
  return text;
}

// The Cortex-M7's implementation registers and the closing registers of core 0 keep
// their plain name and their address in either group.
bool keepsItsPlace(const std::string& stem, int32_t core, const std::string& name) {
  if (stem != "SCB") return false;
  if (core == 0) return name == "SHCSR" || name == "DFSR";
  return core == 7 && (name.starts_with("CM7_") || name.starts_with("IEBR") || name.starts_with("DEBR"));
}

// Only these fields have an empty description; every other field of the tables has text.
const std::set<std::string> kEmptyDescriptions{"ISRPREEMPT", "VECTCLRACTIVE", "VECTRESET", "DEBUGEVT", "EXTERNAL",
                                               "VCATCH",     "DWTTRAP",       "BKPT",      "HALTED"};

void checkFields(const std::string& stem, const MemoryMapElement* registerElement, int64_t bits) {
  std::vector<std::pair<int64_t, int64_t>> used;
  std::set<std::string> names;
  for (MemoryMapElement* field : children(registerElement)) {
    std::string name = value(field, "name");
    int64_t start = wholeNumber(value(field, "start"), 10);
    int64_t size = wholeNumber(value(field, "size"), 10);
    EXPECT_TRUE(names.insert(name).second) << name << " twice";
    EXPECT_TRUE(start >= 0 && size >= 0 && start + size <= bits) << name << " " << start << ":" << size;
    for (const auto& [otherStart, otherSize] : used)
      EXPECT_TRUE(start + size <= otherStart || otherStart + otherSize <= start) << name << " overlaps";
    used.emplace_back(start, size);
    if (stem == "NVIC") {
      EXPECT_EQ(attributeNames(field), "name start size ");
    } else {
      EXPECT_EQ(attributeNames(field), "name start size description ");
      EXPECT_EQ(value(field, "description").empty(), stem == "SCB" && kEmptyDescriptions.count(name) == 1) << name;
    }
  }
}

void checkGroup(const std::string& stem, const MemoryMapElement* group, const Variant& v) {
  const bool alias = v.nonSecure && stem != "SAU";
  EXPECT_EQ(value(group, "name"), alias ? stem + "_NS" : stem);
  EXPECT_EQ(attributeNames(group), "name start description ");
  const int64_t space = 0xE000E000 + (alias ? kAliasOffset : 0);
  const int64_t groupStart = wholeNumber(value(group, "start"), 16);
  EXPECT_EQ(groupStart & ~0xFFF, space);
  std::set<std::string> names;
  std::vector<std::pair<int64_t, int64_t>> spans;
  for (MemoryMapElement* registerElement : children(group)) {
    std::string name = value(registerElement, "name");
    SCOPED_TRACE(name);
    bool fixed = keepsItsPlace(stem, v.core, name);
    EXPECT_TRUE(names.insert(name).second) << "twice";
    EXPECT_EQ(name.ends_with("_NS"), alias && !fixed);
    int64_t address = wholeNumber(value(registerElement, "start"), 16);
    EXPECT_EQ(value(registerElement, "start"), hexText(address, stem == "NVIC" || stem == "SAU" || fixed));
    EXPECT_EQ(address & ~0xFFF, fixed ? 0xE000E000 : space);
    EXPECT_TRUE(fixed || address >= groupStart) << hexText(address, false);
    int64_t bytes = registerElement->hasAttribute("size") ? wholeNumber(value(registerElement, "size"), 10) : 4;
    EXPECT_TRUE((bytes == 1 || bytes == 2 || bytes == 4) && address % bytes == 0) << bytes;
    spans.emplace_back(address, bytes);
    EXPECT_EQ(value(registerElement, "access"), registerElement->hasAttribute("access") ? "ReadOnly" : "?");
    EXPECT_EQ(attributeNames(registerElement),
              stem == "NVIC" ? presentInOrder(registerElement, {"name", "description", "start", "access"})
                             : presentInOrder(registerElement, {"name", "start", "size", "access", "description"}));
    EXPECT_NE(value(registerElement, "description"), "?");
    checkFields(stem, registerElement, bytes * 8);
  }
  std::sort(spans.begin(), spans.end());
  for (size_t i = 1; i < spans.size(); ++i)
    EXPECT_LE(spans[i - 1].first + spans[i - 1].second, spans[i].first) << hexText(spans[i].first, false);
}

// A register in a form that can be compared across groups: name, address and every
// other attribute, then its fields with all of theirs.
std::string comparable(const MemoryMapElement* registerElement, int64_t offset, const std::string& suffix) {
  std::string text = value(registerElement, "name") + suffix + " " +
                     hexText(wholeNumber(value(registerElement, "start"), 16) + offset, false);
  for (const XMLAttribute* a = registerElement->attributes(); a != nullptr; a = a->next)
    if (std::string(a->name) != "name" && std::string(a->name) != "start") text += std::string(" ") + a->name + "=" + a->value;
  for (MemoryMapElement* field : children(registerElement)) text += " [" + attributes(field) + "]";
  return text + "\n";
}

// The alias has every register of the secure group but those that only secure code
// sees (the interrupt target rows and NSACR), with "_NS" names 0x20000 higher.
void checkAlias(const std::string& stem, const MemoryMapElement* secure, const MemoryMapElement* alias, int32_t core) {
  EXPECT_EQ(wholeNumber(value(alias, "start"), 16), wholeNumber(value(secure, "start"), 16) + kAliasOffset);
  std::string expected, actual;
  for (MemoryMapElement* registerElement : children(secure)) {
    std::string name = value(registerElement, "name");
    if (name == "NSACR" || name.starts_with("NVIC_ITNS")) continue;
    bool fixed = keepsItsPlace(stem, core, name);
    expected += comparable(registerElement, fixed ? 0 : kAliasOffset, fixed ? "" : "_NS");
  }
  for (MemoryMapElement* registerElement : children(alias)) actual += comparable(registerElement, 0, "");
  EXPECT_EQ(actual, expected);
}

TEST(CoreGroupRules, EveryGroupOfEveryVariantKeepsTheLayoutRules) {
  for (int32_t core : kCores)
    for (bool hasVTOR : {false, true})
      for (uint32_t bits = 0; bits <= 8; ++bits) {
        CoreDocument secureDocument(kInterrupts), aliasDocument(kInterrupts);
        std::vector<Built> secure = buildAll(secureDocument, {core, hasVTOR, bits, false});
        std::vector<Built> alias = buildAll(aliasDocument, {core, hasVTOR, bits, true});
        for (size_t i = 0; i < secure.size(); ++i) {
          SCOPED_TRACE(secure[i].stem + " core " + std::to_string(core) + " bits " + std::to_string(bits) +
                       (hasVTOR ? " vtor" : ""));
          checkGroup(secure[i].stem, secure[i].group, {core, hasVTOR, bits, false});
          if (alias[i].group == nullptr) continue;
          checkGroup(alias[i].stem, alias[i].group, {core, hasVTOR, bits, true});
          checkAlias(secure[i].stem, secure[i].group, alias[i].group, core);
        }
      }
}

// Each interrupt up to the highest named one has a bit in one register of every row
// and the top prioBits bits of a byte in the priority registers; unnamed interrupts
// leave gaps in the fields, not in the registers.
std::string expectedNVIC(int32_t core, uint32_t prioBits, bool nonSecure, int32_t highest) {
  struct Row { const char* stem; uint32_t base; const char* access; };
  std::vector<Row> rows = {{"ISER", 0xE000E100, ""}, {"ICER", 0xE000E180, ""}, {"ISPR", 0xE000E200, ""},
                           {"ICPR", 0xE000E280, ""}, {"IABR", 0xE000E300, " ReadOnly"}};
  if ((core == 23 || core == 33) && !nonSecure) rows.push_back({"ITNS", 0xE000E380, ""});
  const std::string suffix = nonSecure ? "_NS" : "";
  const uint32_t offset = nonSecure ? kAliasOffset : 0;
  auto registerText = [&](const std::string& name, uint32_t address, const char* access, int first, int count,
                          auto position) {
    std::string text = name + suffix + " " + hexText(address + offset, true) + access + ":";
    std::string separator = " ";
    for (const auto& [number, interrupt] : kInterrupts)
      if (number >= first && number < first + count && number <= highest) {
        text += separator + interrupt + " " + position(number);
        separator = ", ";
      }
    return text;
  };
  std::string text;
  for (const Row& row : rows)
    for (int r = 0; r <= highest / 32; ++r)
      text += (text.empty() ? "" : "; ") +
              registerText("NVIC_" + std::string(row.stem) + std::to_string(r), row.base + 4 * r, row.access, 32 * r, 32,
                           [](int i) { return std::to_string(i % 32) + ":1"; });
  for (int r = 0; r <= highest / 4; ++r)
    text += (text.empty() ? "" : "; ") +
            registerText("NVIC_IPR" + std::to_string(r), 0xE000E400 + 4 * r, "", 4 * r, 4, [&](int i) {
              return std::to_string(i % 4 * 8 + 8 - static_cast<int>(prioBits)) + ":" + std::to_string(prioBits);
            });
  return text;
}

TEST(CoreGroupRules, NVICBitsFollowTheInterruptNumbers) {
  for (int32_t core : kCores)
    for (uint32_t bits = 0; bits <= 8; ++bits)
      for (bool nonSecure : {false, true})
        for (int32_t highest : {0, 5, 31, 32, 47}) {
          CoreDocument document(kInterrupts);
          document.file.highestInterrupt = highest;
          MemoryMapElement* group = addNVICGroup(document.file, core, bits, 0, true, nonSecure);
          EXPECT_EQ(listing(group), expectedNVIC(core, bits, nonSecure, highest))
              << core << " bits " << bits << (nonSecure ? " alias" : "") << " highest " << highest;
        }
}

TEST(NVICGroup, GroupWithoutInterruptsStaysEmpty) {
  CoreDocument document;
  MemoryMapElement* group = addNVICGroup(document.file, 3, 2, 0, true, false);
  EXPECT_EQ(attributes(group), "name=NVIC start=0xE000E100 description=Nested Vectored Interrupt Controller");
  EXPECT_EQ(names(group), "");
  EXPECT_EQ(attributes(addNVICGroup(document.file, 33, 2, 0, false, true)), "name=NVIC_NS start=0xE002E100");
}

// The row layout is checked for every core and bit count with the other core groups.
TEST(NVICGroup, AliasWithoutDescriptionsAndMorePriorityBitsThanAByteHolds) {
  CoreDocument document({{2, "UART"}, {33, "LAST"}});
  EXPECT_EQ(attributes(child(addNVICGroup(document.file, 33, 2, 0, false, true), "NVIC_IPR0_NS")),
            "name=NVIC_IPR0_NS start=0xE002E400");
  // More priority bits than a byte holds reach into the byte below.
  EXPECT_EQ(registerLine(child(addNVICGroup(document.file, 3, 10, 0, true, false), "NVIC_IPR8")),
            "NVIC_IPR8 0xE000E420: LAST 6:10");
}

TEST(NVICGroup, IrqStartShiftsTheNamesAndEntriesBeyondTheTableCountAsUnnamed) {
  CoreDocument document({{1, "ONE"}, {255, "LAST"}});
  document.file.highestInterrupt = 5;
  EXPECT_EQ(registerLine(child(addNVICGroup(document.file, 3, 2, 250, false, false), "NVIC_ISER0")),
            "NVIC_ISER0 0xE000E100: LAST 5:1");
  EXPECT_EQ(registerLine(child(addNVICGroup(document.file, 3, 2, UINT32_MAX, false, false), "NVIC_ISER0")),
            "NVIC_ISER0 0xE000E100:");
}

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

MemoryMapElement* addGroup(CoreDocument& document, MemoryMapElement* parent, const char* name) {
  return addGroupElement(document.file, parent, "0x40000000", nullptr, name, nullptr);
}

TEST(PPBGroups, GroupsAndAliasesFollowCoreAndUnits) {
  struct Case { int32_t core; bool fpu; bool mpu; const char* groups; } cases[] = {
      {0, false, false, "UART NVIC SysTick SCB"},
      {4, true, true, "UART NVIC SysTick SCB FPU MPU"},
      {7, true, false, "UART NVIC SysTick SCB FPU"},
      {9, false, true, "UART NVIC SysTick SCB MPU"},
      {23, false, true, "UART NVIC NVIC_NS SysTick SysTick_NS SCB SCB_NS MPU MPU_NS SAU"},
      {33, true, true, "UART NVIC NVIC_NS SysTick SysTick_NS SCB SCB_NS FPU FPU_NS MPU MPU_NS SAU"},
      {33, true, false, "UART NVIC NVIC_NS SysTick SysTick_NS SCB SCB_NS FPU FPU_NS"},
  };
  for (const Case& c : cases) {
    CoreDocument document;
    addGroup(document, document.file.root(), "UART");
    document.file.setCoreInfo(c.core, true, 2, c.mpu, c.fpu);
    ASSERT_TRUE(addPPBGroups(document.file));
    EXPECT_EQ(names(document.file.root()), c.groups) << c.core;
  }
  SVDFile withoutRoot;
  EXPECT_FALSE(addPPBGroups(withoutRoot));
}

TEST(PPBGroups, GroupsTakeTheFilesCoreDataAndTheTreeGetsItsAddresses) {
  CoreDocument document({{0, "WDT"}, {5, "UART"}, {40, "LAST"}});
  MemoryMapElement* root = document.file.root();
  MemoryMapElement* data = addRegisterElement(document.file, addGroup(document, root, "UART"), "+0x8", "4", nullptr,
                                              "DR", nullptr);
  document.file.setCoreInfo(33, true, 3, true, true);
  addPPBGroups(document.file);
  MemoryMapElement* nvic = child(root, "NVIC");
  EXPECT_EQ(registerLine(child(nvic, "NVIC_ITNS0")), "NVIC_ITNS0 0xE000E380: WDT 0:1, UART 5:1");
  EXPECT_EQ(registerLine(child(nvic, "NVIC_IPR1")), "NVIC_IPR1 0xE000E404: UART 13:3");
  EXPECT_EQ(registerLine(child(child(root, "SCB"), "SHPR2")), "SHPR2 0xe000ed1c: PRI_11(SVCall) 29:3");
  EXPECT_EQ(value(child(root, "NVIC_NS"), "description"), "Nested Vectored Interrupt Controller");
  EXPECT_EQ(data->address, 0x40000008u);
  MemoryMapElement* usageFault = child(child(root, "SCB_NS"), "UFSR_NS");
  EXPECT_EQ(usageFault->address, 0xe002ed2au);
  EXPECT_EQ(usageFault->size, 2u);
  EXPECT_EQ(child(child(root, "SAU"), "SFAR")->address, 0xE000EDE8u);
}

TEST(PPBGroups, AGroupOfTheSameNameAnywhereSuppressesGroupAndAlias) {
  for (const auto& [present, groups] : std::vector<std::pair<const char*, std::string>>{
           {"Nvic", "SysTick SysTick_NS SCB SCB_NS FPU FPU_NS MPU MPU_NS SAU"},
           {"systick", "NVIC NVIC_NS SCB SCB_NS FPU FPU_NS MPU MPU_NS SAU"},
           {"Scb", "NVIC NVIC_NS SysTick SysTick_NS FPU FPU_NS MPU MPU_NS SAU"},
           {"fpu", "NVIC NVIC_NS SysTick SysTick_NS SCB SCB_NS MPU MPU_NS SAU"},
           {"MPU", "NVIC NVIC_NS SysTick SysTick_NS SCB SCB_NS FPU FPU_NS"},
           {"SCB_NS", "NVIC NVIC_NS SysTick SysTick_NS SCB SCB_NS FPU FPU_NS MPU MPU_NS SAU"}}) {  // no alias check
    CoreDocument document;
    MemoryMapElement* core = addGroup(document, document.file.root(), "CORE");
    addGroup(document, core, present);
    addRegisterElement(document.file, core, "0x0", nullptr, nullptr, "NVIC", nullptr);  // only groups count
    document.file.setCoreInfo(33, true, 2, true, true);
    addPPBGroups(document.file);
    EXPECT_EQ(names(document.file.root()), "CORE " + groups) << present;
  }
}

}  // namespace
}  // namespace regmill
