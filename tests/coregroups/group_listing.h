// Test helpers: a document with a Processor root, and compact one-line listings of
// generated groups, so that expectations read like the register tables they come from.
#pragma once
#include <string>
#include <vector>

#include "memorymap/svd_file.h"

namespace regmill::testing {

// An SVDFile with a Processor root and, if asked, an interrupt table of 256 entries.
struct CoreDocument {
  explicit CoreDocument(bool withInterruptTable = true);
  // Stores names at the given interrupt numbers.
  void name(std::initializer_list<std::pair<int, const char*>> interrupts);
  // The register group of that exact name, or null.
  MemoryMapElement* group(const char* name);
  // The names of the root's children in order, blank separated.
  std::string groupNames();

  SVDFile file;
};

// "NAME start size access : FIELD bit:width, ..." with "-" for an absent attribute and
// nothing after the colon when the register has no fields.
std::string registerLine(const MemoryMapElement* registerElement);
std::vector<std::string> registerLines(const MemoryMapElement* group);
// The line of the register of that name, or "missing NAME".
std::string registerLine(const MemoryMapElement* group, const char* name);
// The register names of a group, blank separated.
std::string registerNames(const MemoryMapElement* group);
// The attribute names of an element in their order, blank separated.
std::string attributeOrder(const MemoryMapElement* element);
// The element children of a node, in order.
std::vector<MemoryMapElement*> children(const MemoryMapElement* parent);
// The first child element whose name is `name`, or null.
MemoryMapElement* child(const MemoryMapElement* parent, const char* name);

}  // namespace regmill::testing
