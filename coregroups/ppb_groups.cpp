#include "coregroups/ppb_groups.h"

#include "coregroups/fpu_group.h"
#include "coregroups/mpu_group.h"
#include "coregroups/nvic_group.h"
#include "coregroups/sau_group.h"
#include "coregroups/scb_group.h"
#include "coregroups/systick_group.h"
#include "memorymap/compute_addresses.h"
#include "memorymap/cores.h"

namespace regmill {

namespace {

// A group that the description already has, under any case, stands for both the
// plain group and its alias.
bool describedAlready(MemoryMapElement* root, const char* name) {
  return findElement(root, ElementKind::RegisterGroup, "name", name, false) != nullptr;
}

}  // namespace

bool addPPBGroups(SVDFile& file) {
  MemoryMapElement* root = file.root();
  if (root == nullptr) return false;
  const int32_t core = file.coreNumber;
  const uint32_t prioBits = file.nvicPrioBits;
  const bool withAlias = hasSecurityExtension(core);

  if (!describedAlready(root, "NVIC")) {
    addNVICGroup(file, core, prioBits, 0, true, false);
    if (withAlias) addNVICGroup(file, core, prioBits, 0, true, true);
  }
  if (!describedAlready(root, "SysTick")) {
    addSysTickGroup(file, false);
    if (withAlias) addSysTickGroup(file, true);
  }
  if (!describedAlready(root, "SCB")) {
    addSCBGroup(file, core, prioBits, false);
    if (withAlias) addSCBGroup(file, core, prioBits, true);
  }
  if (file.fpuPresent && !describedAlready(root, "FPU")) {
    addFPUGroup(file, core, false);
    if (withAlias) addFPUGroup(file, core, true);
  }
  // The security attribution unit comes with the MPU step only.
  if (file.mpuPresent && !describedAlready(root, "MPU")) {
    addMPUGroup(file, core, false);
    if (withAlias) {
      addMPUGroup(file, core, true);
      addSAUGroup(file);
    }
  }
  computeAddresses(root, 0);
  return true;
}

}  // namespace regmill
