#include "coregroups/nvic_group.h"

#include <climits>
#include <gtest/gtest.h>

#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using testing::attributeOrder;
using testing::child;
using testing::children;
using testing::CoreDocument;
using testing::registerLine;
using testing::registerLines;
using testing::registerNames;

using Lines = std::vector<std::string>;

TEST(NVICGroup, WithoutInterruptsTheGroupStaysEmpty) {
  CoreDocument document;
  MemoryMapElement* group = addNVICGroup(document.file, 3, 2, 0, true, false);
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(attributeOrder(group), "name start description");
  EXPECT_STREQ(group->getAttribute("name"), "NVIC");
  EXPECT_STREQ(group->getAttribute("start"), "0xE000E100");
  EXPECT_STREQ(group->getAttribute("description"), "Nested Vectored Interrupt Controller");
  EXPECT_TRUE(children(group).empty());
}

TEST(NVICGroup, HighestInterruptZeroGivesOneRegisterPerRow) {
  CoreDocument document;
  document.name({{0, "WWDG"}});
  MemoryMapElement* group = addNVICGroup(document.file, 3, 2, 0, true, false);
  EXPECT_EQ(registerLines(group), (Lines{
                                      "NVIC_ISER0 0xE000E100 - - : WWDG 0:1",
                                      "NVIC_ICER0 0xE000E180 - - : WWDG 0:1",
                                      "NVIC_ISPR0 0xE000E200 - - : WWDG 0:1",
                                      "NVIC_ICPR0 0xE000E280 - - : WWDG 0:1",
                                      "NVIC_IABR0 0xE000E300 - ReadOnly : WWDG 0:1",
                                      "NVIC_IPR0 0xE000E400 - - : WWDG 6:2",
                                  }));
}

TEST(NVICGroup, RegistersCoverInterruptsUpToTheHighestOne) {
  struct Case {
    int highest;
    const char* names;
  } cases[] = {
      {31, "NVIC_ISER0 NVIC_ICER0 NVIC_ISPR0 NVIC_ICPR0 NVIC_IABR0 NVIC_IPR0 NVIC_IPR1 NVIC_IPR2 NVIC_IPR3 "
           "NVIC_IPR4 NVIC_IPR5 NVIC_IPR6 NVIC_IPR7"},
      {32, "NVIC_ISER0 NVIC_ISER1 NVIC_ICER0 NVIC_ICER1 NVIC_ISPR0 NVIC_ISPR1 NVIC_ICPR0 NVIC_ICPR1 NVIC_IABR0 "
           "NVIC_IABR1 NVIC_IPR0 NVIC_IPR1 NVIC_IPR2 NVIC_IPR3 NVIC_IPR4 NVIC_IPR5 NVIC_IPR6 NVIC_IPR7 NVIC_IPR8"},
  };
  for (const Case& c : cases) {
    CoreDocument document;
    document.name({{c.highest, "LAST"}});
    EXPECT_EQ(registerNames(addNVICGroup(document.file, 4, 2, 0, true, false)), c.names) << c.highest;
  }
}

TEST(NVICGroup, UnnamedInterruptsLeaveGapsInFieldsNotRegisters) {
  CoreDocument document;
  document.name({{1, "ONE"}, {31, "LAST0"}, {32, "FIRST1"}, {33, "TIMER"}});
  MemoryMapElement* group = addNVICGroup(document.file, 4, 2, 0, true, false);
  EXPECT_EQ(registerLine(group, "NVIC_ISER0"), "NVIC_ISER0 0xE000E100 - - : ONE 1:1, LAST0 31:1");
  EXPECT_EQ(registerLine(group, "NVIC_ISER1"), "NVIC_ISER1 0xE000E104 - - : FIRST1 0:1, TIMER 1:1");
  EXPECT_EQ(registerLine(group, "NVIC_IABR1"), "NVIC_IABR1 0xE000E304 - ReadOnly : FIRST1 0:1, TIMER 1:1");
  EXPECT_EQ(registerLine(group, "NVIC_IPR0"), "NVIC_IPR0 0xE000E400 - - : ONE 14:2");
  EXPECT_EQ(registerLine(group, "NVIC_IPR1"), "NVIC_IPR1 0xE000E404 - - :");
  EXPECT_EQ(registerLine(group, "NVIC_IPR7"), "NVIC_IPR7 0xE000E41C - - : LAST0 30:2");
  EXPECT_EQ(registerLine(group, "NVIC_IPR8"), "NVIC_IPR8 0xE000E420 - - : FIRST1 6:2, TIMER 14:2");
  EXPECT_EQ(child(group, "NVIC_IPR9"), nullptr);
}

TEST(NVICGroup, PriorityFieldsHoldTheTopBitsOfTheirByte) {
  struct Case {
    uint32_t prioBits;
    const char* line;
  } cases[] = {
      {0, "NVIC_IPR1 0xE000E404 - - : A 8:0, B 16:0, C 32:0"},
      {3, "NVIC_IPR1 0xE000E404 - - : A 5:3, B 13:3, C 29:3"},
      {4, "NVIC_IPR1 0xE000E404 - - : A 4:4, B 12:4, C 28:4"},
      {8, "NVIC_IPR1 0xE000E404 - - : A 0:8, B 8:8, C 24:8"},
      {10, "NVIC_IPR1 0xE000E404 - - : A -2:10, B 6:10, C 22:10"},
  };
  for (const Case& c : cases) {
    CoreDocument document;
    document.name({{4, "A"}, {5, "B"}, {7, "C"}});
    EXPECT_EQ(registerLine(addNVICGroup(document.file, 3, c.prioBits, 0, true, false), "NVIC_IPR1"), c.line);
  }
}

TEST(NVICGroup, DescriptionsComeBeforeTheAddressAndCanBeLeftOut) {
  CoreDocument document;
  document.name({{0, "A"}});
  MemoryMapElement* described = addNVICGroup(document.file, 3, 2, 0, true, false);
  EXPECT_EQ(attributeOrder(child(described, "NVIC_IABR0")), "name description start access");
  EXPECT_STREQ(child(described, "NVIC_ICPR0")->getAttribute("description"), "Interrupt Clear-Pending Register 0");
  EXPECT_STREQ(child(described, "NVIC_IPR0")->getAttribute("description"), "Interrupt Priority Register 0");
  EXPECT_EQ(attributeOrder(children(child(described, "NVIC_ISER0"))[0]), "name start size");

  MemoryMapElement* plain = addNVICGroup(document.file, 3, 2, 0, false, false);
  EXPECT_EQ(attributeOrder(plain), "name start");
  EXPECT_EQ(attributeOrder(child(plain, "NVIC_IABR0")), "name start access");
}

TEST(NVICGroup, TargetRowOnlyInTheSecureGroupOfArmv8MCores) {
  for (int32_t core : {23, 33}) {
    CoreDocument document;
    document.name({{2, "UART"}});
    MemoryMapElement* secure = addNVICGroup(document.file, core, 2, 0, true, false);
    EXPECT_EQ(registerNames(secure), "NVIC_ISER0 NVIC_ICER0 NVIC_ISPR0 NVIC_ICPR0 NVIC_IABR0 NVIC_ITNS0 NVIC_IPR0");
    EXPECT_EQ(registerLine(secure, "NVIC_ITNS0"), "NVIC_ITNS0 0xE000E380 - - : UART 2:1");
    EXPECT_STREQ(child(secure, "NVIC_ITNS0")->getAttribute("description"), "Interrupt Target Non-secure Register 0");

    MemoryMapElement* alias = addNVICGroup(document.file, core, 2, 0, true, true);
    EXPECT_STREQ(alias->getAttribute("name"), "NVIC_NS");
    EXPECT_STREQ(alias->getAttribute("start"), "0xE002E100");
    EXPECT_EQ(registerLines(alias), (Lines{
                                        "NVIC_ISER0_NS 0xE002E100 - - : UART 2:1",
                                        "NVIC_ICER0_NS 0xE002E180 - - : UART 2:1",
                                        "NVIC_ISPR0_NS 0xE002E200 - - : UART 2:1",
                                        "NVIC_ICPR0_NS 0xE002E280 - - : UART 2:1",
                                        "NVIC_IABR0_NS 0xE002E300 - ReadOnly : UART 2:1",
                                        "NVIC_IPR0_NS 0xE002E400 - - : UART 22:2",
                                    }));
  }
  CoreDocument other;
  other.name({{0, "A"}});
  EXPECT_EQ(child(addNVICGroup(other.file, 7, 2, 0, true, false), "NVIC_ITNS0"), nullptr);
}

TEST(NVICGroup, FirstVectorEntryShiftsTheNameLookupOnly) {
  CoreDocument document;
  document.name({{15, "SysTick"}, {16, "WWDG"}, {18, "RTC"}});
  MemoryMapElement* group = addNVICGroup(document.file, 3, 2, 16, false, false);
  // The table's highest entry is 18, so the registers still cover interrupts 0 to 18.
  EXPECT_EQ(registerLine(group, "NVIC_ISER0"), "NVIC_ISER0 0xE000E100 - - : WWDG 0:1, RTC 2:1");
  EXPECT_EQ(registerLine(group, "NVIC_IPR0"), "NVIC_IPR0 0xE000E400 - - : WWDG 6:2, RTC 22:2");
  EXPECT_EQ(registerLine(group, "NVIC_IPR4"), "NVIC_IPR4 0xE000E410 - - :");

  CoreDocument farOut;
  farOut.name({{255, "LAST"}});
  MemoryMapElement* beyond = addNVICGroup(farOut.file, 3, 2, UINT32_MAX, false, false);
  EXPECT_EQ(registerLine(beyond, "NVIC_ISER7"), "NVIC_ISER7 0xE000E11C - - :");
  EXPECT_EQ(registerLine(addNVICGroup(farOut.file, 3, 2, 250, false, false), "NVIC_ISER0"),
            "NVIC_ISER0 0xE000E100 - - : LAST 5:1");
}

TEST(NVICGroup, RegistersStopAtTheArchitecturesLastInterrupt) {
  CoreDocument document;
  document.file.highestInterrupt = INT32_MAX;
  MemoryMapElement* group = addNVICGroup(document.file, 3, 2, 0, false, false);
  // 16 registers in each of five rows, 124 priority registers.
  EXPECT_EQ(children(group).size(), 5u * 16 + 124);
  EXPECT_EQ(registerLine(group, "NVIC_IPR123"), "NVIC_IPR123 0xE000E5EC - - :");
  EXPECT_EQ(registerLine(group, "NVIC_ISER15"), "NVIC_ISER15 0xE000E13C - - :");
}

}  // namespace
}  // namespace regmill
