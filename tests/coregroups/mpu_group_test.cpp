#include "coregroups/mpu_group.h"

#include <gtest/gtest.h>

#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using testing::attributeOrder;
using testing::child;
using testing::children;
using testing::CoreDocument;
using testing::registerLines;

using Lines = std::vector<std::string>;

TEST(MPUGroup, Armv7MShapeForCoresUpTo7) {
  for (int32_t core : {0, 3, 4, 7}) {
    CoreDocument document;
    MemoryMapElement* group = addMPUGroup(document.file, core, false);
    EXPECT_EQ(attributeOrder(group), "name start description");
    EXPECT_STREQ(group->getAttribute("start"), "0xe000ed90");
    EXPECT_STREQ(group->getAttribute("description"), "Memory Protection Unit");
    EXPECT_EQ(registerLines(group),
              (Lines{
                  "MPU_TYPE 0xe000ed90 - ReadOnly : IREGION 16:8, DREGION 8:8, SEPARATE 0:1",
                  "MPU_CTRL 0xe000ed94 - - : PRIVDEFENA 2:1, HFNMIENA 1:1, ENABLE 0:1",
                  "MPU_RNR 0xe000ed98 - - : REGION 0:8",
                  "MPU_RBAR 0xe000ed9c - - : ADDR 5:27, VALID 4:1, REGION 0:4",
                  "MPU_RASR 0xe000eda0 - - : XN 28:1, AP 24:3, TEX 19:3, S 18:1, C 17:1, B 16:1, SRD 8:8, "
                  "SIZE 1:5, ENABLE 0:1",
              }))
        << core;
  }
}

TEST(MPUGroup, Armv8MShapeWithAttributeIndirection) {
  for (int32_t core : {23, 33}) {
    CoreDocument document;
    EXPECT_EQ(registerLines(addMPUGroup(document.file, core, false)),
              (Lines{
                  "MPU_TYPE 0xe000ed90 - ReadOnly : IREGION 16:8, DREGION 8:8, SEPARATE 0:1",
                  "MPU_CTRL 0xe000ed94 - - : PRIVDEFENA 2:1, HFNMIENA 1:1, ENABLE 0:1",
                  "MPU_RNR 0xe000ed98 - - : REGION 0:8",
                  "MPU_RBAR 0xe000ed9c - - : BASE 5:27, SH 3:2, AP 1:2, XN 0:1",
                  "MPU_RLAR 0xe000eda0 - - : LIMIT 5:27, AttrIndx 1:3, EN 0:1",
                  "MPU_MAIR0 0xe000edc0 - - : Attr3 24:8, Attr2 16:8, Attr1 8:8, Attr0 0:8",
                  "MPU_MAIR1 0xe000edc4 - - : Attr7 24:8, Attr6 16:8, Attr5 8:8, Attr4 0:8",
              }))
        << core;
  }
}

TEST(MPUGroup, AliasAndDescriptions) {
  CoreDocument document;
  MemoryMapElement* alias = addMPUGroup(document.file, 33, true);
  EXPECT_STREQ(alias->getAttribute("name"), "MPU_NS");
  EXPECT_STREQ(alias->getAttribute("start"), "0xe002ed90");
  EXPECT_EQ(registerLines(alias).front(), "MPU_TYPE_NS 0xe002ed90 - ReadOnly : IREGION 16:8, DREGION 8:8, SEPARATE 0:1");
  EXPECT_EQ(registerLines(alias).back(), "MPU_MAIR1_NS 0xe002edc4 - - : Attr7 24:8, Attr6 16:8, Attr5 8:8, Attr4 0:8");

  MemoryMapElement* mair0 = child(alias, "MPU_MAIR0_NS");
  EXPECT_EQ(attributeOrder(mair0), "name start description");
  EXPECT_STREQ(mair0->getAttribute("description"), "MPU Memory Attribution Indirect Register 0");
  EXPECT_STREQ(children(mair0)[0]->getAttribute("description"), "Attribute 3");
  EXPECT_STREQ(children(child(alias, "MPU_RLAR_NS"))[0]->getAttribute("description"), "Limit Address");
  EXPECT_STREQ(children(child(alias, "MPU_CTRL_NS"))[2]->getAttribute("description"), "Enable MPU");
}

}  // namespace
}  // namespace regmill
