// What every step of one SVD read shares: the target document, the reader flags, the
// device's register defaults, the base index of the parsed SVD document and the
// element budget of the output.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "memorymap/svd_file.h"
#include "readers/svd/svd_inheritance.h"
#include "readers/svd/svd_output.h"
#include "readers/svd/svd_text.h"

namespace regmill {

// The device-level texts that registers fall back on.
struct DeviceDefaults {
  TextValue width;
  TextValue size;
  TextValue access;
  TextValue resetValue;
  TextValue resetMask;
};

struct SVDReadContext {
  SVDReadContext(SVDFile& target, const XMLNode* firstTopLevelNode, uint32_t readerFlags, const char* ignoreName,
                 size_t elementLimit);

  // The description to write: empty when descriptions are ignored, else with its
  // line-break sequences turned into markup.
  std::string description(const TextValue& text) const;
  // Whether -ignore-name drops a field of this name: a case-insensitive prefix test.
  bool ignoresField(std::string_view name) const;
  bool has(SVDReaderFlag flag) const { return hasFlag(flags, flag); }

  SVDFile& file;
  uint32_t flags;
  std::optional<std::string> ignoredPrefix;
  DeviceDefaults defaults;
  DerivationIndex bases;
  OutputTree output;
};

}  // namespace regmill
