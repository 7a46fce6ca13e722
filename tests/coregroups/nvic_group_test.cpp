#include "coregroups/nvic_group.h"

#include <gtest/gtest.h>

#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using namespace regmill::testing;

const std::string kRows0 = "NVIC_ISER0 NVIC_ICER0 NVIC_ISPR0 NVIC_ICPR0 NVIC_IABR0";
const std::string kRows01 =
    "NVIC_ISER0 NVIC_ISER1 NVIC_ICER0 NVIC_ICER1 NVIC_ISPR0 NVIC_ISPR1 NVIC_ICPR0 NVIC_ICPR1 NVIC_IABR0 NVIC_IABR1";
const std::string kPriorities0To7 = " NVIC_IPR0 NVIC_IPR1 NVIC_IPR2 NVIC_IPR3 NVIC_IPR4 NVIC_IPR5 NVIC_IPR6 NVIC_IPR7";

TEST(NVICGroup, RegistersCoverTheInterruptsUpToTheHighestNamedOne) {
  // The registers in order, and the lines of those that hold the highest interrupt,
  // whose priority field fills the top prioBits bits of its byte.
  struct Case { int highest; uint32_t prioBits; std::string registers; std::vector<std::string> lines; } cases[] = {
      {-1, 2, "", {}},
      {0, 3, kRows0 + " NVIC_IPR0", {"NVIC_ISER0 0xE000E100: LAST 0:1", "NVIC_IPR0 0xE000E400: LAST 5:3"}},
      {31, 0, kRows0 + kPriorities0To7,
       {"NVIC_IABR0 0xE000E300 ReadOnly: LAST 31:1", "NVIC_IPR7 0xE000E41C: LAST 32:0"}},
      {32, 8, kRows01 + kPriorities0To7 + " NVIC_IPR8",
       {"NVIC_ISER1 0xE000E104: LAST 0:1", "NVIC_IPR8 0xE000E420: LAST 0:8"}},
      {33, 2, kRows01 + kPriorities0To7 + " NVIC_IPR8",
       {"NVIC_IABR1 0xE000E304 ReadOnly: LAST 1:1", "NVIC_IPR8 0xE000E420: LAST 14:2"}},
      {36, 10, kRows01 + kPriorities0To7 + " NVIC_IPR8 NVIC_IPR9", {"NVIC_IPR9 0xE000E424: LAST -2:10"}},
  };
  for (const Case& c : cases) {
    CoreDocument document;
    if (c.highest >= 0) document.file.storeInterruptName(c.highest, "LAST");
    MemoryMapElement* group = addNVICGroup(document.file, 3, c.prioBits, 0, true, false);
    EXPECT_EQ(attributes(group), "name=NVIC start=0xE000E100 description=Nested Vectored Interrupt Controller");
    EXPECT_EQ(names(group), c.registers) << c.highest;
    for (const std::string& line : c.lines)
      EXPECT_EQ(registerLine(child(group, line.substr(0, line.find(' ')))), line) << c.highest;
  }
}

TEST(NVICGroup, SecureArmv8MCoresAddTheTargetRowAndTheAliasHasNone) {
  for (int32_t core : {23, 33}) {
    CoreDocument document({{2, "UART"}});
    MemoryMapElement* secure = addNVICGroup(document.file, core, 2, 0, true, false);
    EXPECT_EQ(listing(secure),
              "NVIC_ISER0 0xE000E100: UART 2:1; NVIC_ICER0 0xE000E180: UART 2:1; NVIC_ISPR0 0xE000E200: UART 2:1; "
              "NVIC_ICPR0 0xE000E280: UART 2:1; NVIC_IABR0 0xE000E300 ReadOnly: UART 2:1; "
              "NVIC_ITNS0 0xE000E380: UART 2:1; NVIC_IPR0 0xE000E400: UART 22:2");
    EXPECT_EQ(attributes(child(secure, "NVIC_ITNS0")),  // the description comes before the address
              "name=NVIC_ITNS0 description=Interrupt Target Non-secure Register 0 start=0xE000E380");
    MemoryMapElement* alias = addNVICGroup(document.file, core, 2, 0, true, true);
    EXPECT_EQ(attributes(alias), "name=NVIC_NS start=0xE002E100 description=Nested Vectored Interrupt Controller");
    EXPECT_EQ(listing(alias),
              "NVIC_ISER0_NS 0xE002E100: UART 2:1; NVIC_ICER0_NS 0xE002E180: UART 2:1; "
              "NVIC_ISPR0_NS 0xE002E200: UART 2:1; NVIC_ICPR0_NS 0xE002E280: UART 2:1; "
              "NVIC_IABR0_NS 0xE002E300 ReadOnly: UART 2:1; NVIC_IPR0_NS 0xE002E400: UART 22:2");
  }
}

TEST(NVICGroup, EntriesBeyondTheTableCountAsUnnamed) {
  CoreDocument document({{1, "ONE"}, {255, "LAST"}});
  document.file.highestInterrupt = 5;
  EXPECT_EQ(registerLine(child(addNVICGroup(document.file, 3, 2, 250, false, false), "NVIC_ISER0")),
            "NVIC_ISER0 0xE000E100: LAST 5:1");
  EXPECT_EQ(registerLine(child(addNVICGroup(document.file, 3, 2, UINT32_MAX, false, false), "NVIC_ISER0")),
            "NVIC_ISER0 0xE000E100:");
}

}  // namespace
}  // namespace regmill
