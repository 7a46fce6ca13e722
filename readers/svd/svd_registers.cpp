#include "readers/svd/svd_registers.h"

#include "base/parse_number.h"

namespace regmill {

const char* mapAccess(std::string_view access, std::string_view readAction) {
  if (!readAction.empty()) return "None";
  if (access == "read-only") return "ReadOnly";
  if (access == "write-only" || access == "writeOnce") return "WriteOnly";
  return "Read/Write";
}

std::string registerSize(const Derivation& reg, std::string_view peripheralSize, const DeviceDefaults& defaults,
                         bool sizeInBytes) {
  TextValue own = reg.text(SVDTag::Size);
  std::string_view text = own.view();
  for (std::string_view fallback : {peripheralSize, defaults.size.view(), defaults.width.view()})
    if (text.empty()) text = fallback;
  int64_t size = decimalNumber(text).value_or(0);
  return decimalText(sizeInBytes ? size : size / 8);
}

namespace {

TextValue textOrDefault(TextValue text, const TextValue& fallback) { return text.empty() ? fallback : text; }

uint64_t elementsPerInstance(const RegisterPlan& plan) {
  uint64_t count = 1;
  for (const FieldPlan& field : plan.fields) count = cappedSum(count, elementCount(field));
  return count;
}

RegisterPlan planRegister(SVDReadContext& context, const XMLElement* element, std::string_view peripheralSize) {
  Derivation reg = context.bases.derive(element);
  RegisterPlan plan;
  plan.array = readRegisterArray(reg);
  plan.name = reg.own.text(SVDTag::Name);
  plan.offset = reg.text(SVDTag::AddressOffset);
  plan.size = registerSize(reg, peripheralSize, context.defaults, context.has(SVDReaderFlag::RegSizeInBytes));
  TextValue access = textOrDefault(reg.text(SVDTag::Access), context.defaults.access);
  // "readAction" counts on the register itself only, never through its base.
  plan.access = mapAccess(access.view(), reg.own.text(SVDTag::ReadAction).view());
  plan.description = context.description(reg.text(SVDTag::Description));
  plan.resetValue = textOrDefault(reg.text(SVDTag::ResetValue), context.defaults.resetValue);
  plan.resetMask = textOrDefault(reg.text(SVDTag::ResetMask), context.defaults.resetMask);
  plan.fields = planFields(context, reg.element(SVDTag::Fields));
  return plan;
}

void writeRegisterInstance(SVDReadContext& context, const RegisterPlan& plan, XMLElement* group,
                           const RegisterPlacement& placement, int64_t i) {
  MemoryMapElement* reg = context.output.append(group, "Register");
  std::string text;
  appendRegisterInstanceStart(text, placement.addressPrefix, plan.offset.view(), plan.array.increment, i);
  setText(reg, "start", text);
  setText(reg, "size", plan.size);
  text = placement.namePrefix;
  text.append(registerInstanceName(plan.name.view(), plan.array, i)).append(placement.nameSuffix);
  setText(reg, "name", text);
  setText(reg, "access", plan.access);
  if (!plan.description.empty()) setText(reg, "description", plan.description);
  if (!plan.resetValue.empty()) setText(reg, "reset_value", plan.resetValue.view());
  if (!plan.resetMask.empty()) setText(reg, "reset_mask", plan.resetMask.view());
  for (const FieldPlan& field : plan.fields) writeField(context.output, reg, field);
}

}  // namespace

std::vector<RegisterPlan> planRegisters(SVDReadContext& context, const XMLElement* source,
                                        std::string_view peripheralSize) {
  std::vector<RegisterPlan> plans;
  for (const XMLElement* reg = findChild(source->firstChild(), "register"); reg != nullptr;
       reg = findChild(reg->nextSibling(), "register"))
    plans.push_back(planRegister(context, reg, peripheralSize));
  return plans;
}

uint64_t elementCount(const std::vector<RegisterPlan>& plans) {
  uint64_t count = 0;
  for (const RegisterPlan& plan : plans)
    if (plan.array.count > 0) count = cappedSum(count, cappedProduct(plan.array.count, elementsPerInstance(plan)));
  return count;
}

void writeRegisters(SVDReadContext& context, const std::vector<RegisterPlan>& plans, XMLElement* group,
                    const RegisterPlacement& placement) {
  for (const RegisterPlan& plan : plans) {
    if (plan.array.count <= 0) continue;
    if (!context.output.reserve(cappedProduct(plan.array.count, elementsPerInstance(plan)))) return;
    for (int64_t i = 0; i < plan.array.count; ++i) writeRegisterInstance(context, plan, group, placement, i);
  }
}

void readRegisters(SVDReadContext& context, const XMLElement* source, XMLElement* group,
                   std::string_view peripheralSize, const RegisterPlacement& placement) {
  writeRegisters(context, planRegisters(context, source, peripheralSize), group, placement);
}

}  // namespace regmill
