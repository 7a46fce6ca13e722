#include "coregroups/nvic_group.h"

#include <algorithm>
#include <string>

#include "coregroups/element_builders.h"
#include "memorymap/cores.h"

namespace regmill {

namespace {

constexpr uint32_t kNVICBase = 0xE000E100;

// A run of registers in which each interrupt owns a slot of slotBits bits: one bit in
// the enable, pending, active and target rows, one byte in the priority row.
struct RegisterRun {
  const char* stem;
  uint32_t base;
  const char* description;
  const char* access;
  int32_t slotBits;
};

// The interrupt target row comes last: only the secure NVIC of an Armv8-M core with
// the security extension has it.
constexpr RegisterRun kBitRuns[] = {
    {"ISER", kNVICBase + 0x000, "Interrupt Set-Enable Register", nullptr, 1},
    {"ICER", kNVICBase + 0x080, "Interrupt Clear-Enable Register", nullptr, 1},
    {"ISPR", kNVICBase + 0x100, "Interrupt Set-Pending Register", nullptr, 1},
    {"ICPR", kNVICBase + 0x180, "Interrupt Clear-Pending Register", nullptr, 1},
    {"IABR", kNVICBase + 0x200, "Interrupt Active Bit Register", kReadOnly, 1},
    {"ITNS", kNVICBase + 0x280, "Interrupt Target Non-secure Register", nullptr, 1},
};
constexpr RegisterRun kPriorityRun{"IPR", 0xE000E400, "Interrupt Priority Register", nullptr, 8};

// The name of interrupt i, looked up irqStart entries further on; an entry beyond
// the table counts as empty.
const char* interruptNameAt(const SVDFile& file, uint32_t irqStart, int32_t interrupt) {
  int64_t index = int64_t{irqStart} + interrupt;
  if (index > INT32_MAX) return nullptr;
  return file.interruptName(static_cast<int32_t>(index));
}

struct NVICLayout {
  SVDFile& file;
  MemoryMapElement* group;
  uint32_t prioBits;
  uint32_t irqStart;
  bool withDescription;
  bool nonSecure;
  int32_t lastInterrupt;
};

// The NVIC's registers carry their description before their address.
MemoryMapElement* addRunRegister(const NVICLayout& layout, const RegisterRun& run, int32_t number) {
  MemoryMapElement* element = layout.file.newElement("Register");
  layout.group->addChild(element);
  std::string name = "NVIC_" + std::string(run.stem) + std::to_string(number);
  element->setAttributeCopy("name", nonSecureName(name.c_str(), layout.nonSecure).c_str());
  if (layout.withDescription)
    element->setAttributeCopy("description", (std::string(run.description) + " " + std::to_string(number)).c_str());
  uint32_t address = run.base + static_cast<uint32_t>(number) * 4;
  if (layout.nonSecure) address += kNonSecureAliasOffset;
  element->setAttributeCopy("start", paddedHexAddress(address).c_str());
  if (run.access != nullptr) element->setAttributeCopy("access", run.access);
  return element;
}

// The field fills the top of the interrupt's slot: the whole bit, or the top prioBits
// bits of the priority byte. Computed wide, so that more priority bits than a byte
// holds give a plain negative start.
void addInterruptField(const NVICLayout& layout, MemoryMapElement* registerElement, const RegisterRun& run,
                       int32_t interrupt, const char* name) {
  int64_t width = run.slotBits == 1 ? 1 : int64_t{layout.prioBits};
  int64_t start = int64_t{interrupt % (32 / run.slotBits)} * run.slotBits + run.slotBits - width;
  addFieldElement(layout.file, registerElement, std::to_string(start).c_str(), std::to_string(width).c_str(), name,
                  nullptr);
}

void addRun(const NVICLayout& layout, const RegisterRun& run) {
  const int32_t perRegister = 32 / run.slotBits;
  MemoryMapElement* current = nullptr;
  for (int32_t i = 0; i <= layout.lastInterrupt; ++i) {
    if (i % perRegister == 0) current = addRunRegister(layout, run, i / perRegister);
    if (const char* name = interruptNameAt(layout.file, layout.irqStart, i))
      addInterruptField(layout, current, run, i, name);
  }
}

}  // namespace

MemoryMapElement* addNVICGroup(SVDFile& file, int32_t core, uint32_t prioBits, uint32_t irqStart,
                               bool withDescription, bool nonSecure) {
  MemoryMapElement* root = file.root();
  if (root == nullptr) return nullptr;
  MemoryMapElement* group =
      addGroupElement(file, root, paddedHexAddress(nonSecure ? kNVICBase + kNonSecureAliasOffset : kNVICBase).c_str(),
                      nullptr, nonSecure ? "NVIC_NS" : "NVIC",
                      withDescription ? "Nested Vectored Interrupt Controller" : nullptr);
  if (file.highestInterrupt < 0) return group;

  NVICLayout layout{file,     group,     prioBits, irqStart, withDescription,
                    nonSecure, std::min(file.highestInterrupt, kLastNVICInterrupt)};
  size_t runsInUse = hasSecurityExtension(core) && !nonSecure ? 6 : 5;
  for (size_t run = 0; run < runsInUse; ++run) addRun(layout, kBitRuns[run]);
  addRun(layout, kPriorityRun);
  return group;
}

}  // namespace regmill
