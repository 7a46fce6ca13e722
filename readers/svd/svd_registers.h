// Registers: one "register" element of the SVD text becomes as many Register
// elements as its array has instances. Each register is looked up once into a plan;
// the plan is then written for every instance, and for every instance of a cluster
// that holds it.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "readers/svd/svd_arrays.h"
#include "readers/svd/svd_fields.h"
#include "readers/svd/svd_read_context.h"

namespace regmill {

// How the registers read from one "registers" or "cluster" element are named and
// placed: the name between prefix and suffix, the address behind the prefix, if any.
struct RegisterPlacement {
  std::string namePrefix;
  std::string_view nameSuffix;
  std::optional<std::string> addressPrefix;
};

struct RegisterPlan {
  RegisterArray array;
  TextValue name;
  TextValue offset;
  std::string size;
  const char* access = "";
  std::string description;
  TextValue resetValue;
  TextValue resetMask;
  std::vector<FieldPlan> fields;
};

// "read-only" is ReadOnly, "write-only" and "writeOnce" WriteOnly, anything else
// Read/Write; a register with a "readAction" of its own is "None" whatever its access.
const char* mapAccess(std::string_view access, std::string_view readAction);

// The size in bytes, in decimal: the first non-empty of the register's "size", its
// base's, the peripheral's, the device's "size" and the device's "width", as a
// decimal number (0 when it isn't one), divided by 8 unless sizes are in bytes.
std::string registerSize(const Derivation& reg, std::string_view peripheralSize, const DeviceDefaults& defaults,
                         bool sizeInBytes);

// The "register" children of `source`, in document order.
std::vector<RegisterPlan> planRegisters(SVDReadContext& context, const XMLElement* source,
                                        std::string_view peripheralSize);

// How many elements one writing of the plans makes, every array instance counted.
uint64_t elementCount(const std::vector<RegisterPlan>& plans);

// Writes every instance of every plan into the group; stops when the output refuses.
void writeRegisters(SVDReadContext& context, const std::vector<RegisterPlan>& plans, XMLElement* group,
                    const RegisterPlacement& placement);

// planRegisters and writeRegisters in one.
void readRegisters(SVDReadContext& context, const XMLElement* source, XMLElement* group,
                   std::string_view peripheralSize, const RegisterPlacement& placement);

}  // namespace regmill
