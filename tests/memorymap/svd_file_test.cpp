#include "memorymap/svd_file.h"

#include <gtest/gtest.h>

#include <string>

namespace regmill {
namespace {

// The names of entries 0 to 4, "-" for none, and the highest entry.
std::string table(const SVDFile& file) {
  std::string text;
  for (int i = -1; i < 5; ++i) {
    const char* name = file.interruptName(i);
    text += std::string(name == nullptr ? "-" : name) + " ";
  }
  return text + std::to_string(file.highestInterrupt);
}

TEST(SVDFile, InterruptNamesNeedATableAndFilledEntriesStay) {
  SVDFile file;
  file.setInterruptNames({"A", "B"});
  file.storeInterruptName(0, "A");
  EXPECT_EQ(table(file), "- - - - - - -1");  // untouched without a table
  file.setInterruptTableSize(4);
  file.setInterruptNames({"A", "", "C"});  // empty parts leave entries free
  file.setInterruptNames({"X", "B", "Y", "D", "BEYOND"});
  EXPECT_EQ(table(file), "- A B C D - 3");
  file.setInterruptTableSize(8);
  file.storeInterruptName(2, "OLD");
  file.storeInterruptName(2, "");  // stored names replace and may be empty
  file.storeInterruptName(8, "OUTSIDE");
  EXPECT_EQ(table(file), "- - -  - - 2");
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
