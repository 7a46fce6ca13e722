#include "coregroups/ppb_groups.h"

#include <gtest/gtest.h>

#include "coregroups/element_builders.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

using namespace regmill::testing;

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
