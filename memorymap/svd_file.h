// The memory-map document of a converter run: the tree that every reader fills,
// plus the interrupt table and the core data that the vector table and the core
// group generators read. The readers (loadSVD and the others) and the generators
// (addNVICGroup, addPPBGroups) are free operations on it in their own folders.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <QStringList>

#include "memorymap/memory_map.h"

namespace regmill {

// Reader flags of loadSVD; a run holds them as an unsigned 32-bit bit set.
enum class SVDReaderFlag : uint32_t {
  RegSizeInBytes = 1,
  IgnoreDescription = 2,
  KeepCoreInfo = 4,
  KeepInterrupts = 8,
};

constexpr uint32_t flagBit(SVDReaderFlag flag) { return static_cast<uint32_t>(flag); }
constexpr bool hasFlag(uint32_t flags, SVDReaderFlag flag) { return (flags & flagBit(flag)) != 0; }

class SVDFile : public MemoryMap {
 public:
  SVDFile() = default;
  ~SVDFile() override;

  // Allocates `count` empty entries and sets highestInterrupt to -1.
  void setInterruptTableSize(int32_t count);
  void setCoreInfo(int32_t core, bool withVTOR, uint32_t prioBits, bool withMPU, bool withFPU);
  // Stores each non-empty name at its position if the entry exists and is still empty.
  void setInterruptNames(const QStringList& names);
  // Stores a name at an index below the table size, replacing an earlier entry.
  void storeInterruptName(int32_t index, std::string name);
  // The stored name, or null if the entry is empty or outside the table.
  const char* interruptName(int32_t index) const;
  // Unlinks each element child of the root whose name is in the list (exact,
  // case-sensitive). Unlinked groups stay allocated until the document ends.
  void removeGroups(const QStringList& names);

  std::vector<std::optional<std::string>> interruptNames;
  int32_t interruptTableSize = 0;
  int32_t highestInterrupt = -1;
  int32_t coreNumber = 0;
  bool hasVTOR = false;
  bool mpuPresent = false;
  bool fpuPresent = false;
  uint32_t nvicPrioBits = 2;

 private:
  std::vector<XMLNode*> unlinked_;
};

}  // namespace regmill
