#include "coregroups/element_builders.h"

#include <gtest/gtest.h>

#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using testing::attributeOrder;
using testing::CoreDocument;

TEST(ElementBuilders, AddressAndNameTextsMoveToTheAlias) {
  EXPECT_EQ(hexAddress(0xe000e010, false), "0xe000e010");
  EXPECT_EQ(hexAddress(0xe000e010, true), "0xe002e010");
  EXPECT_EQ(hexAddress(0x10, false), "0x10");
  EXPECT_EQ(paddedHexAddress(0x10), "0x00000010");
  EXPECT_EQ(paddedHexAddress(0xe000edd0), "0xE000EDD0");
  EXPECT_EQ(nonSecureName("SCB", false), "SCB");
  EXPECT_EQ(nonSecureName("SCB", true), "SCB_NS");
}

TEST(ElementBuilders, AttributesFollowTheFixedOrderAndNullLeavesThemOut) {
  CoreDocument document;
  MemoryMapElement* root = document.file.root();
  MemoryMapElement* group = addGroupElement(document.file, root, "0x10", "4", "G", "");
  MemoryMapElement* reg = addRegisterElement(document.file, group, "0x14", nullptr, "ReadOnly", "R", "text");
  MemoryMapElement* field = addFieldElement(document.file, reg, "3", "2", "F", nullptr);

  EXPECT_EQ(group->kind(), RegisterGroupKind);
  EXPECT_EQ(reg->kind(), RegisterKind);
  EXPECT_EQ(field->kind(), BitFieldKind);
  EXPECT_EQ(attributeOrder(group), "name start size description");
  EXPECT_STREQ(group->getAttribute("description"), "");  // empty, not left out
  EXPECT_EQ(attributeOrder(reg), "name start access description");
  EXPECT_EQ(attributeOrder(field), "name start size");
  EXPECT_EQ(field->parent(), reg);
  EXPECT_EQ(root->firstChild(), group);
}

}  // namespace
}  // namespace regmill
