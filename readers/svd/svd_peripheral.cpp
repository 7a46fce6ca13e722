#include "readers/svd/svd_peripheral.h"

#include <cstring>

#include "readers/svd/svd_arrays.h"
#include "readers/svd/svd_device_info.h"
#include "readers/svd/svd_registers.h"

namespace regmill {

bool isAlternativeView(const std::vector<const XMLElement*>& clusters, bool hasDirectRegisters) {
  if (clusters.empty() || hasDirectRegisters) return false;
  ChildTable first(clusters.front());
  TextValue offset = first.text(SVDTag::AddressOffset);
  TextValue name = first.text(SVDTag::Name);
  for (size_t i = 1; i < clusters.size(); ++i) {
    ChildTable other(clusters[i]);
    if (other.text(SVDTag::AddressOffset) != offset.view() || other.text(SVDTag::AlternateCluster) != name.view())
      return false;
  }
  return true;
}

namespace {

MemoryMapElement* makeGroup(SVDReadContext& context, const PeripheralTexts& peripheral, std::string_view name) {
  if (!context.output.reserve(1)) return nullptr;
  MemoryMapElement* group = context.output.append(context.file.root(), "RegisterGroup");
  setText(group, "name", name);
  setText(group, "start", peripheral.baseAddress);
  if (!peripheral.description.empty()) setText(group, "description", peripheral.description);
  return group;
}

RegisterPlacement peripheralPlacement(const PeripheralTexts& peripheral) {
  return {std::string(peripheral.prependToName.view()), peripheral.appendToName.view(), std::nullopt};
}

// Alternative views: a group per cluster, named "P (C)", at the peripheral's address;
// the clusters' offsets and arrays play no part.
void placeAlternativeViews(SVDReadContext& context, const PeripheralTexts& peripheral,
                           const std::vector<const XMLElement*>& clusters) {
  for (const XMLElement* cluster : clusters) {
    std::string name(peripheral.name.view());
    name.append(" (").append(ChildTable(cluster).text(SVDTag::Name).view()).append(")");
    MemoryMapElement* group = makeGroup(context, peripheral, name);
    if (group == nullptr) return;
    readRegisters(context, cluster, group, peripheral.size.view(), peripheralPlacement(peripheral));
  }
}

// A cluster in the peripheral's one group: its registers once per instance, named
// "C0.X" and placed behind the cluster's address prefix. Only the registers directly
// in the cluster are read; a nested cluster is passed over.
void expandCluster(SVDReadContext& context, const PeripheralTexts& peripheral, const XMLElement* cluster,
                   XMLElement* group) {
  ChildTable children(cluster);
  ClusterArray array = readClusterArray(children);
  if (array.count <= 0) return;
  std::vector<RegisterPlan> plans = planRegisters(context, cluster, peripheral.size.view());
  uint64_t perInstance = elementCount(plans);
  if (perInstance == 0) return;
  if (!context.output.fits(cappedProduct(static_cast<uint64_t>(array.count), perInstance))) {
    context.output.refuse();
    return;
  }
  TextValue name = children.text(SVDTag::Name);
  TextValue offset = children.text(SVDTag::AddressOffset);
  RegisterPlacement placement = peripheralPlacement(peripheral);
  for (int64_t i = 0; i < array.count && !context.output.refused(); ++i) {
    placement.namePrefix = std::string(peripheral.prependToName.view()) + clusterInstanceName(name.view(), array, i) + ".";
    placement.addressPrefix = clusterAddressPrefix(offset.view(), array, i);
    writeRegisters(context, plans, group, placement);
  }
}

}  // namespace

void placeClusters(SVDReadContext& context, const PeripheralTexts& peripheral, const XMLElement* registers) {
  std::vector<const XMLElement*> clusters;
  bool hasDirectRegisters = false;
  for (const XMLNode* node = registers->firstChild(); node != nullptr; node = node->nextSibling()) {
    if (!node->isElement()) continue;
    if (std::strcmp(node->getName(), "cluster") == 0) clusters.push_back(static_cast<const XMLElement*>(node));
    if (std::strcmp(node->getName(), "register") == 0) hasDirectRegisters = true;
  }
  if (isAlternativeView(clusters, hasDirectRegisters)) {
    placeAlternativeViews(context, peripheral, clusters);
    return;
  }
  MemoryMapElement* group = makeGroup(context, peripheral, peripheral.name.view());
  if (group == nullptr) return;
  readRegisters(context, registers, group, peripheral.size.view(), peripheralPlacement(peripheral));
  for (const XMLElement* cluster : clusters) {
    if (context.output.refused()) return;
    expandCluster(context, peripheral, cluster, group);
  }
}

void readPeripheral(SVDReadContext& context, const XMLElement* element) {
  Derivation peripheral = context.bases.derive(element);
  PeripheralTexts texts;
  texts.name = peripheral.own.text(SVDTag::Name);
  texts.baseAddress = fixHexPrefix(peripheral.own.text(SVDTag::BaseAddress).view());
  texts.description = context.description(peripheral.text(SVDTag::Description));
  texts.prependToName = peripheral.text(SVDTag::PrependToName);
  texts.appendToName = peripheral.text(SVDTag::AppendToName);
  texts.size = peripheral.text(SVDTag::Size);
  if (const XMLElement* registers = peripheral.element(SVDTag::Registers)) placeClusters(context, texts, registers);
  if (!context.has(SVDReaderFlag::KeepInterrupts)) readInterrupts(context.file, element);
}

}  // namespace regmill
