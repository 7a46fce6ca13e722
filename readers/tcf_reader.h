// Reads a TCF board description, already parsed into an XML tree with text nodes off,
// into a memory map. Everything the format says stands in attributes; addresses and
// sizes are copied as written.
#pragma once
#include "memorymap/memory_map.h"
#include "xml/xml_node.h"

namespace regmill {

// `root` is the input's root (it may be null). True when it is a "boards" element
// whose first child is a "board" element; the document then gets a Root with one
// RegisterGroup per peripheral. Otherwise false, and the document is left as it was.
bool readTCF(XMLNode* root, MemoryMap& document);

}  // namespace regmill
