// Bit fields and their enumerated values. A field is looked up once per register
// and kept as a plan, which is then written under every instance of the register.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "readers/svd/svd_read_context.h"

namespace regmill {

struct FieldPosition {
  int64_t offset = 0;
  int64_t width = 0;
};

// The first position form that the field or its base has: "bitOffset" with
// "bitWidth" (both by prefix), else "bitRange", else "lsb" with "msb" (decimal),
// else offset 0 and width 0. Each form is looked up with the base before the next
// one is tried.
FieldPosition readFieldPosition(const Derivation& field);

// "[msb:lsb]": the text without its first and last byte, split at ":" with empty
// parts dropped. A range without two parts gives offset 0 and width 0.
FieldPosition parseBitRange(std::string_view text);

struct EnumPlan {
  TextValue name;
  std::string start;
  std::string description;
};

struct FieldPlan {
  FieldPosition position;
  TextValue name;
  std::string description;
  std::vector<EnumPlan> enums;
};

// The enumerated values of a field: its own "enumeratedValues", else its base's; a
// list with a "derivedFrom" that resolves is replaced by the list it names. Entries
// without a name or a value are dropped; "#" in front of a value becomes "0b".
std::vector<EnumPlan> planEnumeratedValues(SVDReadContext& context, const Derivation& field);

// The "field" children of a "fields" element, in document order, less those that
// -ignore-name drops.
std::vector<FieldPlan> planFields(SVDReadContext& context, const XMLElement* fields);

// How many elements a field writes: itself and its enumerated values.
uint64_t elementCount(const FieldPlan& field);

// Writes the BitField with its Enum children; the description comes behind them.
void writeField(OutputTree& output, XMLElement* reg, const FieldPlan& field);

}  // namespace regmill
