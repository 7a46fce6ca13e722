// Reads an RDT description into a memory map. The main file, already parsed into an
// XML tree with text nodes off, names the processor's peripheral instances; the
// reader loads the register file of each instance itself.
#pragma once
#include "base/status.h"
#include "memorymap/element_budget.h"
#include "memorymap/memory_map.h"
#include "xml/xml_node.h"

namespace regmill {

// The one processor that the format's descriptions are read for.
inline constexpr const char* kRDTProcessorId = "CortexA9_0";

// `root` is the main file's root (it may be null). True when a "cpu" element of the
// processor's id was found; without one the document is left as it was. Instance
// files are opened by their names as written, so that a relative name is relative to
// the current folder, and each is read once however many instances name it. Fails,
// with the document half filled, when an instance's register file can't be loaded
// (the failure's file names it; it is empty when the instance names none), or when
// the output would pass `elementLimit`.
Expected<bool> readRDT(XMLNode* root, MemoryMap& document, size_t elementLimit = kDefaultElementLimit);

// The first element with the tag "cpu" whose `id` equals `id`, depth first from
// `start` (the node before its children; the start's siblings are not searched).
XMLElement* findBoardCPU(XMLNode* start, const char* id);

}  // namespace regmill
