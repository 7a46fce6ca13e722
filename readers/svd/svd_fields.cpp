#include "readers/svd/svd_fields.h"

#include "base/parse_number.h"

namespace regmill {

FieldPosition parseBitRange(std::string_view text) {
  std::string_view inner = text.size() >= 2 ? text.substr(1, text.size() - 2) : std::string_view();
  std::string_view parts[2];
  size_t found = 0;
  while (found < 2) {
    size_t at = inner.find(':');
    std::string_view part = inner.substr(0, at);
    if (!part.empty()) parts[found++] = part;
    if (at == std::string_view::npos) break;
    inner.remove_prefix(at + 1);
  }
  if (found < 2) return {};
  int64_t msb = decimalNumber(parts[0]).value_or(0);
  int64_t lsb = decimalNumber(parts[1]).value_or(0);
  return {lsb, msb - lsb + 1};
}

FieldPosition readFieldPosition(const Derivation& field) {
  if (TextValue bitOffset = field.text(SVDTag::BitOffset); !bitOffset.empty())
    return {prefixedNumber(bitOffset.view()).value_or(0),
            prefixedNumber(field.text(SVDTag::BitWidth).view()).value_or(0)};
  if (TextValue bitRange = field.text(SVDTag::BitRange); !bitRange.empty()) return parseBitRange(bitRange.view());
  if (TextValue lsbText = field.text(SVDTag::Lsb); !lsbText.empty()) {
    int64_t lsb = decimalNumber(lsbText.view()).value_or(0);
    int64_t msb = decimalNumber(field.text(SVDTag::Msb).view()).value_or(0);
    return {lsb, msb - lsb + 1};
  }
  return {};
}

namespace {

std::string enumValueText(std::string_view value) {
  // A binary value written "#1010" becomes "0b1010"; do-not-care digits stay.
  if (!value.empty() && value.front() == '#') return "0b" + std::string(value.substr(1));
  return std::string(value);
}

}  // namespace

std::vector<EnumPlan> planEnumeratedValues(SVDReadContext& context, const Derivation& field) {
  std::vector<EnumPlan> enums;
  const XMLElement* values = field.element(SVDTag::EnumeratedValues);
  if (values == nullptr) return enums;
  if (const XMLElement* named = context.bases.resolveDerived(values)) values = named;
  for (const XMLElement* entry = findChild(values->firstChild(), "enumeratedValue"); entry != nullptr;
       entry = findChild(entry->nextSibling(), "enumeratedValue")) {
    ChildTable children(entry);
    TextValue name = children.text(SVDTag::Name);
    TextValue value = children.text(SVDTag::Value);
    if (name.empty() || value.empty()) continue;
    enums.push_back({name, enumValueText(value.view()), context.description(children.text(SVDTag::Description))});
  }
  return enums;
}

std::vector<FieldPlan> planFields(SVDReadContext& context, const XMLElement* fields) {
  std::vector<FieldPlan> plans;
  if (fields == nullptr) return plans;
  for (const XMLElement* field = findChild(fields->firstChild(), "field"); field != nullptr;
       field = findChild(field->nextSibling(), "field")) {
    Derivation derivation = context.bases.derive(field);
    TextValue name = derivation.own.text(SVDTag::Name);
    if (context.ignoresField(name.view())) continue;
    plans.push_back({readFieldPosition(derivation), name, {}, planEnumeratedValues(context, derivation)});
    plans.back().description = context.description(derivation.text(SVDTag::Description));
  }
  return plans;
}

uint64_t elementCount(const FieldPlan& field) { return 1 + field.enums.size(); }

void writeField(OutputTree& output, XMLElement* reg, const FieldPlan& field) {
  MemoryMapElement* bitField = output.append(reg, "BitField");
  setText(bitField, "start", decimalText(field.position.offset));
  setText(bitField, "size", decimalText(field.position.width));
  setText(bitField, "name", field.name.view());
  for (const EnumPlan& entry : field.enums) {
    MemoryMapElement* element = output.append(bitField, "Enum");
    setText(element, "name", entry.name.view());
    setText(element, "start", entry.start);
    if (!entry.description.empty()) setText(element, "description", entry.description);
  }
  if (!field.description.empty()) setText(bitField, "description", field.description);
}

}  // namespace regmill
