#include "coregroups/nvic_group.h"

#include <algorithm>
#include <string>

#include "coregroups/element_builders.h"

namespace regmill {

namespace {

constexpr uint32_t kNVICBase = 0xE000E100;
constexpr uint32_t kPriorityBase = 0xE000E400;

struct BitRow {
  const char* stem;
  uint32_t offset;  // from kNVICBase
  const char* description;
  const char* access;
};

// The interrupt target row comes last: only the secure NVIC of an Armv8-M core with
// the security extension has it.
constexpr BitRow kBitRows[] = {
    {"ISER", 0x000, "Interrupt Set-Enable Register", nullptr},
    {"ICER", 0x080, "Interrupt Clear-Enable Register", nullptr},
    {"ISPR", 0x100, "Interrupt Set-Pending Register", nullptr},
    {"ICPR", 0x180, "Interrupt Clear-Pending Register", nullptr},
    {"IABR", 0x200, "Interrupt Active Bit Register", kReadOnly},
    {"ITNS", 0x280, "Interrupt Target Non-secure Register", nullptr},
};

bool hasSecurityExtension(int32_t core) { return core == 23 || core == 33; }

// The NVIC's registers carry their description before their address.
MemoryMapElement* addNVICRegister(MemoryMap& map, MemoryMapElement* group, const std::string& name,
                                  const char* description, uint32_t address, const char* access) {
  MemoryMapElement* element = map.newElement("Register");
  group->addChild(element);
  element->setAttributeCopy("name", name.c_str());
  if (description != nullptr) element->setAttributeCopy("description", description);
  element->setAttributeCopy("start", paddedHexAddress(address).c_str());
  if (access != nullptr) element->setAttributeCopy("access", access);
  return element;
}

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

  uint32_t place(uint32_t address) const { return nonSecure ? address + kNonSecureAliasOffset : address; }
  std::string name(const char* stem, int32_t number) const {
    return nonSecureName(("NVIC_" + std::string(stem) + std::to_string(number)).c_str(), nonSecure);
  }
};

void addBitRow(const NVICLayout& layout, const BitRow& row) {
  MemoryMapElement* current = nullptr;
  for (int32_t i = 0; i <= layout.lastInterrupt; ++i) {
    if (i % 32 == 0) {
      int32_t number = i / 32;
      std::string description = std::string(row.description) + " " + std::to_string(number);
      current = addNVICRegister(layout.file, layout.group, layout.name(row.stem, number),
                                layout.withDescription ? description.c_str() : nullptr,
                                layout.place(kNVICBase + row.offset + static_cast<uint32_t>(number) * 4), row.access);
    }
    if (const char* name = interruptNameAt(layout.file, layout.irqStart, i))
      addFieldElement(layout.file, current, std::to_string(i % 32).c_str(), "1", name, nullptr);
  }
}

void addPriorityRegisters(const NVICLayout& layout) {
  MemoryMapElement* current = nullptr;
  std::string size = std::to_string(layout.prioBits);
  for (int32_t i = 0; i <= layout.lastInterrupt; ++i) {
    if (i % 4 == 0) {
      int32_t number = i / 4;
      std::string description = "Interrupt Priority Register " + std::to_string(number);
      current = addNVICRegister(layout.file, layout.group, layout.name("IPR", number),
                                layout.withDescription ? description.c_str() : nullptr,
                                layout.place(kPriorityBase + static_cast<uint32_t>(number) * 4), nullptr);
    }
    if (const char* name = interruptNameAt(layout.file, layout.irqStart, i)) {
      // The field holds the top prioBits bits of the interrupt's byte; computed wide so
      // that more bits than a byte holds give a plain negative start.
      int64_t start = int64_t{i % 4} * 8 + 8 - int64_t{layout.prioBits};
      addFieldElement(layout.file, current, std::to_string(start).c_str(), size.c_str(), name, nullptr);
    }
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
  size_t rowsInUse = hasSecurityExtension(core) && !nonSecure ? 6 : 5;
  for (size_t row = 0; row < rowsInUse; ++row) addBitRow(layout, kBitRows[row]);
  addPriorityRegisters(layout);
  return group;
}

}  // namespace regmill
