// The SVD reader: turns a CMSIS-SVD document into the Processor tree of an SVDFile,
// collects the device's interrupt names into the file's table and takes the core
// values from its "cpu" element. The parsed SVD document lives only for the read;
// everything written into the file is copied.
#pragma once
#include <cstddef>
#include <cstdint>

#include <QString>

#include "memorymap/svd_file.h"
#include "xml/xml_node.h"

namespace regmill {

// The most elements one read makes. A device description that would expand its
// arrays past this is taken for a broken "dim", and the read fails instead of
// exhausting memory; real devices stay far below it.
constexpr size_t kDefaultElementLimit = size_t{1} << 23;

// Makes the Processor root, parses the file at `path` and reads it (flags of
// SVDReaderFlags; ignoreName, if not null, drops fields whose name begins with it,
// ignoring case). False when the file can't be read or parsed, or has no "device".
bool loadSVD(SVDFile& file, const QString& path, uint32_t flags, const char* ignoreName);

// The same for SVD text in memory.
bool loadSVDFromText(SVDFile& file, const char* text, uint32_t flags, const char* ignoreName,
                     size_t elementLimit = kDefaultElementLimit);

// Reads the "device" among the top-level nodes that begin at `firstTopLevelNode`
// into the file's root, which is made if the file has none. False without a
// "device", or when the output would pass `elementLimit`.
bool readDevice(SVDFile& file, const XMLNode* firstTopLevelNode, uint32_t flags, const char* ignoreName,
                size_t elementLimit = kDefaultElementLimit);

}  // namespace regmill
