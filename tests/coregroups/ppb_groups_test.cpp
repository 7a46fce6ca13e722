#include "coregroups/ppb_groups.h"

#include <gtest/gtest.h>

#include "coregroups/element_builders.h"
#include "coregroups/nvic_group.h"
#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using testing::child;
using testing::children;
using testing::CoreDocument;
using testing::registerNames;

void setCore(CoreDocument& document, int32_t core, bool fpu, bool mpu, uint32_t prioBits = 2, bool vtor = true) {
  document.file.setCoreInfo(core, vtor, prioBits, mpu, fpu);
}

TEST(PPBGroups, GroupsAndAliasesFollowCoreAndUnits) {
  struct Case {
    int32_t core;
    bool fpu;
    bool mpu;
    const char* groups;
  } cases[] = {
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
    addGroupElement(document.file, document.file.root(), "0x40000000", nullptr, "UART", nullptr);
    setCore(document, c.core, c.fpu, c.mpu);
    ASSERT_TRUE(addPPBGroups(document.file));
    EXPECT_EQ(document.groupNames(), c.groups) << c.core;
  }
}

TEST(PPBGroups, GroupsTakeTheFilesCoreData) {
  CoreDocument document;
  document.name({{0, "WDT"}, {5, "UART"}});
  setCore(document, 33, false, false, 3);
  addPPBGroups(document.file);

  MemoryMapElement* nvic = document.group("NVIC");
  EXPECT_STREQ(nvic->getAttribute("description"), "Nested Vectored Interrupt Controller");
  EXPECT_NE(child(nvic, "NVIC_ITNS0"), nullptr);
  EXPECT_STREQ(children(child(nvic, "NVIC_IPR1"))[0]->getAttribute("start"), "13");
  EXPECT_STREQ(children(child(nvic, "NVIC_IPR1"))[0]->getAttribute("size"), "3");
  EXPECT_EQ(child(document.group("NVIC_NS"), "NVIC_ITNS0_NS"), nullptr);
  EXPECT_STREQ(children(child(document.group("SCB"), "SHPR2"))[0]->getAttribute("start"), "29");

  CoreDocument armv6M;
  setCore(armv6M, 0, false, false, 2, false);
  addPPBGroups(armv6M.file);
  EXPECT_EQ(child(armv6M.group("SCB"), "VTOR"), nullptr);
}

TEST(PPBGroups, AGroupOfTheSameNameAnywhereSuppressesGroupAndAlias) {
  CoreDocument document;
  MemoryMapElement* core = addGroupElement(document.file, document.file.root(), "0xe0000000", nullptr, "CORE", nullptr);
  addGroupElement(document.file, core, "0xe000e100", nullptr, "Nvic", nullptr);
  addGroupElement(document.file, document.file.root(), "0xe000ed90", nullptr, "mpu", nullptr);
  // Only register groups count, and an alias name is never looked for.
  addRegisterElement(document.file, core, "0xe000e010", nullptr, nullptr, "SysTick", nullptr);
  addGroupElement(document.file, document.file.root(), "0xe002e000", nullptr, "SCB_NS", nullptr);
  setCore(document, 33, true, true);
  addPPBGroups(document.file);
  EXPECT_EQ(document.groupNames(), "CORE mpu SCB_NS SysTick SysTick_NS SCB SCB_NS FPU FPU_NS");
}

TEST(PPBGroups, NVICOptionFirstLeavesNoRoomForTheGeneratedNVIC) {
  CoreDocument document;
  document.name({{16, "WWDG"}});
  setCore(document, 33, false, false);
  addNVICGroup(document.file, 33, 3, 16, false, false);
  addPPBGroups(document.file);
  EXPECT_EQ(document.groupNames(), "NVIC SysTick SysTick_NS SCB SCB_NS");
  MemoryMapElement* nvic = document.group("NVIC");
  EXPECT_EQ(nvic->getAttribute("description"), nullptr);
  EXPECT_EQ(registerNames(nvic), "NVIC_ISER0 NVIC_ICER0 NVIC_ISPR0 NVIC_ICPR0 NVIC_IABR0 NVIC_ITNS0 "
                                 "NVIC_IPR0 NVIC_IPR1 NVIC_IPR2 NVIC_IPR3 NVIC_IPR4");
}

TEST(PPBGroups, EndsByComputingTheAddressesOfTheWholeTree) {
  CoreDocument document;
  MemoryMapElement* uart = addGroupElement(document.file, document.file.root(), "0x40000000", nullptr, "UART", nullptr);
  MemoryMapElement* data = addRegisterElement(document.file, uart, "+0x8", "4", nullptr, "DR", nullptr);
  document.name({{40, "LAST"}});
  setCore(document, 33, true, true);
  ASSERT_TRUE(addPPBGroups(document.file));

  EXPECT_EQ(data->address, 0x40000008u);
  EXPECT_EQ(data->size, 4u);
  EXPECT_EQ(document.group("SCB")->address, 0xe000e000u);
  MemoryMapElement* usageFault = child(document.group("SCB_NS"), "UFSR_NS");
  EXPECT_EQ(usageFault->address, 0xe002ed2au);
  EXPECT_EQ(usageFault->size, 2u);
  EXPECT_EQ(child(document.group("NVIC"), "NVIC_IPR10")->address, 0xE000E428u);
  MemoryMapElement* lastPriority = children(child(document.group("NVIC"), "NVIC_IPR10"))[0];
  EXPECT_EQ(lastPriority->address, 6u);
  EXPECT_EQ(lastPriority->size, 2u);
  EXPECT_EQ(child(document.group("SAU"), "SFAR")->address, 0xE000EDE8u);
  EXPECT_EQ(children(child(document.group("MPU_NS"), "MPU_RBAR_NS"))[0]->address, 5u);
}

TEST(PPBGroups, NothingWithoutARoot) {
  SVDFile file;
  EXPECT_FALSE(addPPBGroups(file));
  EXPECT_EQ(addNVICGroup(file, 3, 2, 0, true, false), nullptr);
}

}  // namespace
}  // namespace regmill
