#include "coregroups/nvic_group.h"

#include <gtest/gtest.h>

#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

using namespace regmill::testing;

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

}  // namespace
}  // namespace regmill
