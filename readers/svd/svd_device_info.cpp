#include "readers/svd/svd_device_info.h"

#include <string>

#include "base/parse_number.h"
#include "memorymap/cores.h"
#include "readers/svd/svd_child_table.h"

namespace regmill {

std::string_view strippedInterruptName(std::string_view name) {
  if (name.starts_with("INT_")) return name.substr(4);
  if (name.ends_with("_IRQ")) return name.substr(0, name.size() - 4);
  return name;
}

namespace {

void storeInterrupt(SVDFile& file, const TextValue& name, const TextValue& value) {
  if (name.empty() || value.empty()) return;
  std::optional<int64_t> number = parseDecimalExactly(value.view());
  // A negative number has no entry, like one at or beyond the table's end.
  if (!number || *number < 0 || *number >= file.interruptTableSize) return;
  file.storeInterruptName(static_cast<int32_t>(*number), std::string(strippedInterruptName(name.view())));
}

void readInterruptEntries(SVDFile& file, const XMLElement* interrupt) {
  const XMLNode* cursor = interrupt->firstChild();
  while (true) {
    const XMLElement* name = findChild(cursor, "name");
    if (name == nullptr) return;
    const XMLElement* value = findChild(name, "value");
    if (value == nullptr) return;
    cursor = value;
    storeInterrupt(file, TextValue(name), TextValue(value));
  }
}

bool isTrue(const TextValue& text) { return text == "1" || text == "true"; }

}  // namespace

void readInterrupts(SVDFile& file, const XMLElement* peripheral) {
  if (file.interruptTableSize <= 0) return;
  for (const XMLElement* interrupt = findChild(peripheral->firstChild(), "interrupt"); interrupt != nullptr;
       interrupt = findChild(interrupt->nextSibling(), "interrupt"))
    readInterruptEntries(file, interrupt);
}

void readCoreValues(SVDFile& file, const XMLElement* cpu) {
  ChildTable children(cpu);
  TextValue name = children.text(SVDTag::Name);
  for (const CoreName& known : kCoreNames) {
    if (name != known.name) continue;
    file.coreNumber = known.core;
    if (known.vtor >= 0) file.hasVTOR = known.vtor == 1;
  }
  file.mpuPresent = isTrue(children.text(SVDTag::MpuPresent));
  file.fpuPresent = isTrue(children.text(SVDTag::FpuPresent));
  // A negative count of bits reads as 0, as a bad text does.
  int32_t bits = decimalNumber(children.text(SVDTag::NvicPrioBits).view()).value_or(0);
  file.nvicPrioBits = bits < 0 ? 0 : static_cast<uint32_t>(bits);
}

}  // namespace regmill
