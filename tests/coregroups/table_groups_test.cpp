// SysTick, MPU, FPU and SAU: the groups that are one straight table for each core.
#include <gtest/gtest.h>

#include "coregroups/fpu_group.h"
#include "coregroups/mpu_group.h"
#include "coregroups/sau_group.h"
#include "coregroups/systick_group.h"
#include "tests/coregroups/group_listing.h"

namespace regmill {
namespace {

using namespace regmill::testing;

const std::string kCommonMPU =
    "MPU_TYPE 0xe000ed90 ReadOnly: IREGION 16:8, DREGION 8:8, SEPARATE 0:1; "
    "MPU_CTRL 0xe000ed94: PRIVDEFENA 2:1, HFNMIENA 1:1, ENABLE 0:1; MPU_RNR 0xe000ed98: REGION 0:8; ";
const std::string kFPUStatus =
    "FPCAR 0xe000ef38: ADDRESSS 3:29; FPDSCR 0xe000ef3c: AHP 26:1, DN 25:1, FZ 24:1, RMode 22:2";

TEST(TableGroups, RegistersAndFieldsOfEachCore) {
  using Make = MemoryMapElement* (*)(SVDFile&, int32_t core);
  const Make mpu = [](SVDFile& file, int32_t core) { return addMPUGroup(file, core, false); };
  const Make fpu = [](SVDFile& file, int32_t core) { return addFPUGroup(file, core, false); };
  struct Case { Make make; std::vector<int32_t> cores; std::string group; std::string registers; } cases[] = {
      {[](SVDFile& file, int32_t) { return addSysTickGroup(file, false); }, {3},
       "name=SysTick start=0xe000e010 description=24-bit System Timer",
       "SYST_CSR 0xe000e010: COUNTFLAG 16:1, CLKSOURCE 2:1, TICKINT 1:1, ENABLE 0:1; SYST_RVR 0xe000e014: RELOAD 0:24; "
       "SYST_CVR 0xe000e018: CURRENT 0:24; SYST_CALIB 0xe000e01c ReadOnly: NOREF 31:1, SKEW 30:1, TENMS 0:24"},
      {mpu, {0, 4, 7}, "name=MPU start=0xe000ed90 description=Memory Protection Unit",
       kCommonMPU + "MPU_RBAR 0xe000ed9c: ADDR 5:27, VALID 4:1, REGION 0:4; MPU_RASR 0xe000eda0: XN 28:1, AP 24:3, "
                    "TEX 19:3, S 18:1, C 17:1, B 16:1, SRD 8:8, SIZE 1:5, ENABLE 0:1"},
      {mpu, {23, 33}, "name=MPU start=0xe000ed90 description=Memory Protection Unit",
       kCommonMPU + "MPU_RBAR 0xe000ed9c: BASE 5:27, SH 3:2, AP 1:2, XN 0:1; "
                    "MPU_RLAR 0xe000eda0: LIMIT 5:27, AttrIndx 1:3, EN 0:1; "
                    "MPU_MAIR0 0xe000edc0: Attr3 24:8, Attr2 16:8, Attr1 8:8, Attr0 0:8; "
                    "MPU_MAIR1 0xe000edc4: Attr7 24:8, Attr6 16:8, Attr5 8:8, Attr4 0:8"},
      {fpu, {4, 7, 23}, "name=FPU start=0xe000ef34 description=Floating Point Unit",
       "FPCCR 0xe000ef34: ASPEN 31:1, LSPEN 30:1, MONRDY 8:1, BFRDY 6:1, MMRDY 5:1, HFRDY 4:1, THREAD 3:1, USER 1:1, "
       "LSPACT 0:1; " + kFPUStatus},
      {fpu, {33}, "name=FPU start=0xe000ef34 description=Floating Point Unit",
       "FPCCR 0xe000ef34: ASPEN 31:1, LSPEN 30:1, LSPENS 29:1, CLRONRET 28:1, CLRONRETS 27:1, TS 26:1, UFRDY 10:1, "
       "SPLIMVIOL 9:1, MONRDY 8:1, SFRDY 7:1, BFRDY 6:1, MMRDY 5:1, HFRDY 4:1, THREAD 3:1, S 2:1, USER 1:1, "
       "LSPACT 0:1; " + kFPUStatus},
      {[](SVDFile& file, int32_t) { return addSAUGroup(file); }, {33},
       "name=SAU start=0xE000EDD0 description=Security Attribution Unit",
       "SAU_CTRL 0xE000EDD0: ALLNS 1:1, ENABLE 0:1; SAU_TYPE 0xE000EDD4: SREGION 0:8; SAU_RNR 0xE000EDD8: REGION 0:8; "
       "SAU_RBAR 0xE000EDDC: BADDR 5:27; SAU_RLAR 0xE000EDE0: LADDR 5:27, NSC 1:1, ENABLE 0:1; SFSR 0xE000EDE4: "
       "LSERR 7:1, SFARVALID 6:1, LSPERR 5:1, INVTRAN 4:1, AUVIOL 3:1, INVER 2:1, INVIS 1:1, INVEP 0:1; "
       "SFAR 0xE000EDE8:"},
  };
  for (const Case& c : cases)
    for (int32_t core : c.cores) {
      CoreDocument document;
      MemoryMapElement* group = c.make(document.file, core);
      EXPECT_EQ(attributes(group) + " | " + listing(group), c.group + " | " + c.registers) << core;
    }
}

TEST(TableGroups, QuotedDescriptions) {
  CoreDocument document;
  MemoryMapElement* sysTick = addSysTickGroup(document.file, false);
  EXPECT_EQ(attributes(child(sysTick, "SYST_CALIB")),
            "name=SYST_CALIB start=0xe000e01c access=ReadOnly description=SysTick Calibration Value Register");
  EXPECT_EQ(value(child(sysTick, "SYST_CVR"), "description"), "SysTick Current Value Register Register");
  EXPECT_EQ(value(children(child(addSAUGroup(document.file), "SAU_RLAR"))[1], "description"), "Non-secure callable");
}

}  // namespace
}  // namespace regmill
