#include "memorymap/svd_file.h"

#include <gtest/gtest.h>

namespace regmill {
namespace {

TEST(SVDFile, NamesNeedATable) {
  SVDFile file;
  file.setInterruptNames({"A", "B"});
  EXPECT_EQ(file.interruptName(0), nullptr);
  EXPECT_EQ(file.highestInterrupt, -1);  // untouched without a table
  file.storeInterruptName(0, "A");
  EXPECT_EQ(file.interruptName(0), nullptr);
}

TEST(SVDFile, EmptyPartsLeaveEntriesFreeAndFilledEntriesStay) {
  SVDFile file;
  file.setInterruptTableSize(4);
  EXPECT_EQ(file.highestInterrupt, -1);
  file.setInterruptNames({"A", "", "C"});
  file.setInterruptNames({"X", "B", "Y", "D", "BEYOND"});
  EXPECT_STREQ(file.interruptName(0), "A");
  EXPECT_STREQ(file.interruptName(1), "B");
  EXPECT_STREQ(file.interruptName(2), "C");
  EXPECT_STREQ(file.interruptName(3), "D");
  EXPECT_EQ(file.interruptName(4), nullptr);
  EXPECT_EQ(file.interruptName(-1), nullptr);
  EXPECT_EQ(file.highestInterrupt, 3);
}

TEST(SVDFile, StoredNamesReplaceAndMayBeEmpty) {
  SVDFile file;
  file.setInterruptTableSize(8);
  file.storeInterruptName(5, "OLD");
  file.storeInterruptName(5, "");
  file.storeInterruptName(8, "OUTSIDE");
  ASSERT_NE(file.interruptName(5), nullptr);
  EXPECT_STREQ(file.interruptName(5), "");
  EXPECT_EQ(file.highestInterrupt, 5);
}

TEST(SVDFile, RemoveGroupsUnlinksDirectChildrenByExactName) {
  SVDFile file;
  ASSERT_TRUE(file.parse(
      "<Processor><RegisterGroup name=\"A\"><Register name=\"B\"/></RegisterGroup>"
      "<RegisterGroup name=\"B\"/><RegisterGroup name=\"b\"/><RegisterGroup name=\"C\"/></Processor>"));
  file.removeGroups({"B", "", "C", "A"});
  XMLNode* remaining = file.root()->firstChild();
  ASSERT_NE(remaining, nullptr);
  EXPECT_STREQ(static_cast<XMLElement*>(remaining)->getAttribute("name"), "b");
  EXPECT_EQ(remaining->nextSibling(), nullptr);
}

}  // namespace
}  // namespace regmill
