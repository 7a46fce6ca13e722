// The SVD reader: turns a CMSIS-SVD document into the Processor tree of an SVDFile,
// collects the device's interrupt names into the file's table and takes the core
// values from its "cpu" element. The parsed SVD document lives only for the read;
// everything written into the file is copied.
#pragma once
#include <cstddef>
#include <cstdint>

#include <QString>

#include "base/status.h"
#include "memorymap/element_budget.h"
#include "memorymap/svd_file.h"
#include "xml/xml_node.h"

namespace regmill {

// Makes the Processor root, parses the file at `path` and reads it (flags of
// SVDReaderFlags; ignoreName, if not null, drops fields whose name begins with it,
// ignoring case). Fails when the file can't be read or parsed, or has no "device".
Status loadSVD(SVDFile& file, const QString& path, uint32_t flags, const char* ignoreName);

// The same for SVD text in memory.
Status loadSVDFromText(SVDFile& file, const char* text, uint32_t flags, const char* ignoreName,
                     size_t elementLimit = kDefaultElementLimit);

// Reads the "device" among the top-level nodes that begin at `firstTopLevelNode`
// into the file's root, which is made if the file has none. Fails without a
// "device", or when the output would pass `elementLimit`.
Status readDevice(SVDFile& file, const XMLNode* firstTopLevelNode, uint32_t flags, const char* ignoreName,
                size_t elementLimit = kDefaultElementLimit);

}  // namespace regmill
