#include "coregroups/systick_group.h"

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

TEST(SysTickGroup, RegistersAndFieldsOfTheTimer) {
  CoreDocument document;
  MemoryMapElement* group = addSysTickGroup(document.file, false);
  EXPECT_EQ(attributeOrder(group), "name start description");
  EXPECT_STREQ(group->getAttribute("start"), "0xe000e010");
  EXPECT_STREQ(group->getAttribute("description"), "24-bit System Timer");
  EXPECT_EQ(registerLines(group), (Lines{
                                      "SYST_CSR 0xe000e010 - - : COUNTFLAG 16:1, CLKSOURCE 2:1, TICKINT 1:1, ENABLE 0:1",
                                      "SYST_RVR 0xe000e014 - - : RELOAD 0:24",
                                      "SYST_CVR 0xe000e018 - - : CURRENT 0:24",
                                      "SYST_CALIB 0xe000e01c - ReadOnly : NOREF 31:1, SKEW 30:1, TENMS 0:24",
                                  }));
  MemoryMapElement* calibration = child(group, "SYST_CALIB");
  EXPECT_EQ(attributeOrder(calibration), "name start access description");
  EXPECT_STREQ(calibration->getAttribute("description"), "SysTick Calibration Value Register");
  EXPECT_STREQ(child(group, "SYST_CVR")->getAttribute("description"), "SysTick Current Value Register Register");
  MemoryMapElement* tenms = children(calibration)[2];
  EXPECT_EQ(attributeOrder(tenms), "name start size description");
  EXPECT_STREQ(tenms->getAttribute("description"),
               "Reload value for 10ms (100Hz) timing, subject to system clock skew errors");
}

TEST(SysTickGroup, AliasMovesNamesAndAddressesButNotFields) {
  CoreDocument document;
  MemoryMapElement* group = addSysTickGroup(document.file, true);
  EXPECT_STREQ(group->getAttribute("name"), "SysTick_NS");
  EXPECT_STREQ(group->getAttribute("start"), "0xe002e010");
  EXPECT_EQ(registerLines(group),
            (Lines{
                "SYST_CSR_NS 0xe002e010 - - : COUNTFLAG 16:1, CLKSOURCE 2:1, TICKINT 1:1, ENABLE 0:1",
                "SYST_RVR_NS 0xe002e014 - - : RELOAD 0:24",
                "SYST_CVR_NS 0xe002e018 - - : CURRENT 0:24",
                "SYST_CALIB_NS 0xe002e01c - ReadOnly : NOREF 31:1, SKEW 30:1, TENMS 0:24",
            }));
}

}  // namespace
}  // namespace regmill
