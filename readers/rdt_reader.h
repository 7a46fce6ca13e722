// Reads an RDT description into a memory map. The main file, already parsed into an
// XML tree with text nodes off, names the processor's peripheral instances; the
// reader loads the register file of each instance itself.
#pragma once
#include <optional>
#include <string>

#include "memorymap/memory_map.h"
#include "xml/xml_node.h"

namespace regmill {

// The one processor that the format's descriptions are read for.
inline constexpr const char* kRDTProcessorId = "CortexA9_0";

struct RDTReadResult {
  // A "cpu" element of the processor's id was found; without one the document is
  // left as it was.
  bool cpuFound = false;
  // Set when an instance's register file can't be loaded (also when the instance
  // names none: then it is empty). The run is to stop with
  // "error: read of <file> failed"; the document is left half filled.
  std::optional<std::string> unreadableFile;
};

// `root` is the main file's root (it may be null). Instance files are opened by
// their names as written, so that a relative name is relative to the current folder.
RDTReadResult readRDT(XMLNode* root, MemoryMap& document);

// The first element with the tag "cpu" whose `id` equals `id`, depth first from
// `start` (the node before its children; the start's siblings are not searched).
XMLElement* findBoardCPU(XMLNode* start, const char* id);

}  // namespace regmill
