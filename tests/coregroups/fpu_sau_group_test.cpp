#include <gtest/gtest.h>

#include "coregroups/fpu_group.h"
#include "coregroups/sau_group.h"
#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using testing::attributeOrder;
using testing::child;
using testing::children;
using testing::CoreDocument;
using testing::registerLines;

using Lines = std::vector<std::string>;

TEST(FPUGroup, ArmV7MFieldsForCoresOtherThan33) {
  for (int32_t core : {4, 7, 23}) {
    CoreDocument document;
    MemoryMapElement* group = addFPUGroup(document.file, core, false);
    EXPECT_EQ(attributeOrder(group), "name start description");
    EXPECT_STREQ(group->getAttribute("start"), "0xe000ef34");
    EXPECT_STREQ(group->getAttribute("description"), "Floating Point Unit");
    EXPECT_EQ(registerLines(group),
              (Lines{
                  "FPCCR 0xe000ef34 - - : ASPEN 31:1, LSPEN 30:1, MONRDY 8:1, BFRDY 6:1, MMRDY 5:1, HFRDY 4:1, "
                  "THREAD 3:1, USER 1:1, LSPACT 0:1",
                  "FPCAR 0xe000ef38 - - : ADDRESSS 3:29",
                  "FPDSCR 0xe000ef3c - - : AHP 26:1, DN 25:1, FZ 24:1, RMode 22:2",
              }))
        << core;
  }
}

TEST(FPUGroup, Core33HasAllSeventeenContextControlFields) {
  CoreDocument document;
  MemoryMapElement* group = addFPUGroup(document.file, 33, false);
  EXPECT_EQ(registerLines(group).front(),
            "FPCCR 0xe000ef34 - - : ASPEN 31:1, LSPEN 30:1, LSPENS 29:1, CLRONRET 28:1, CLRONRETS 27:1, TS 26:1, "
            "UFRDY 10:1, SPLIMVIOL 9:1, MONRDY 8:1, SFRDY 7:1, BFRDY 6:1, MMRDY 5:1, HFRDY 4:1, THREAD 3:1, S 2:1, "
            "USER 1:1, LSPACT 0:1");
  EXPECT_STREQ(children(child(group, "FPCCR"))[0]->getAttribute("description"), "Automatic state preservation enable");
}

TEST(FPUGroup, AliasMovesNamesAndAddresses) {
  CoreDocument document;
  MemoryMapElement* alias = addFPUGroup(document.file, 23, true);
  EXPECT_STREQ(alias->getAttribute("name"), "FPU_NS");
  EXPECT_STREQ(alias->getAttribute("start"), "0xe002ef34");
  EXPECT_EQ(registerLines(alias).back(), "FPDSCR_NS 0xe002ef3c - - : AHP 26:1, DN 25:1, FZ 24:1, RMode 22:2");
  EXPECT_EQ(attributeOrder(child(alias, "FPCAR_NS")), "name start description");
}

TEST(SAUGroup, FixedRegistersInUpperCaseHexadecimal) {
  CoreDocument document;
  MemoryMapElement* group = addSAUGroup(document.file);
  EXPECT_EQ(attributeOrder(group), "name start description");
  EXPECT_STREQ(group->getAttribute("name"), "SAU");
  EXPECT_STREQ(group->getAttribute("start"), "0xE000EDD0");
  EXPECT_STREQ(group->getAttribute("description"), "Security Attribution Unit");
  EXPECT_EQ(registerLines(group),
            (Lines{
                "SAU_CTRL 0xE000EDD0 - - : ALLNS 1:1, ENABLE 0:1",
                "SAU_TYPE 0xE000EDD4 - - : SREGION 0:8",
                "SAU_RNR 0xE000EDD8 - - : REGION 0:8",
                "SAU_RBAR 0xE000EDDC - - : BADDR 5:27",
                "SAU_RLAR 0xE000EDE0 - - : LADDR 5:27, NSC 1:1, ENABLE 0:1",
                "SFSR 0xE000EDE4 - - : LSERR 7:1, SFARVALID 6:1, LSPERR 5:1, INVTRAN 4:1, AUVIOL 3:1, INVER 2:1, "
                "INVIS 1:1, INVEP 0:1",
                "SFAR 0xE000EDE8 - - :",
            }));
  EXPECT_STREQ(child(group, "SFSR")->getAttribute("description"), "Secure Fault Status Register");
  EXPECT_STREQ(children(child(group, "SAU_RLAR"))[1]->getAttribute("description"), "Non-secure callable");
  EXPECT_STREQ(children(child(group, "SFSR"))[0]->getAttribute("description"), "Lazy state error flag");
}

}  // namespace
}  // namespace regmill
