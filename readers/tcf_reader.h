// Reads a TCF board description, already parsed into an XML tree with text nodes off,
// into a memory map. Everything the format says stands in attributes; addresses and
// sizes are copied as written.
#pragma once
#include "base/status.h"
#include "memorymap/element_budget.h"
#include "memorymap/memory_map.h"
#include "xml/xml_node.h"

namespace regmill {

// `root` is the input's root (it may be null). True when it is a "boards" element
// whose first child is a "board" element; the document then gets a Root with one
// RegisterGroup per peripheral. Otherwise false, and the document is left as it was.
// Fails when the output would pass `elementLimit` (enumerations repeat under every
// field that names them); the document is then half filled.
Expected<bool> readTCF(XMLNode* root, MemoryMap& document, size_t elementLimit = kDefaultElementLimit);

}  // namespace regmill
