// Peripherals: each becomes one register group, or one per cluster when its clusters
// are alternative views of the same registers. A peripheral's own "dim" is not read.
#pragma once
#include <string>
#include <vector>

#include "readers/svd/svd_read_context.h"

namespace regmill {

// The texts a peripheral's groups are made from.
struct PeripheralTexts {
  TextValue name;
  std::string baseAddress;
  std::string description;
  TextValue prependToName;
  TextValue appendToName;
  TextValue size;
};

// The clusters are alternative views when there is at least one, the peripheral has
// no register of its own, and every cluster after the first has the first one's
// "addressOffset" and names it in "alternateCluster".
bool isAlternativeView(const std::vector<const XMLElement*>& clusters, bool hasDirectRegisters);

// Makes the groups of a peripheral from its "registers" element (its own or its base's).
void placeClusters(SVDReadContext& context, const PeripheralTexts& peripheral, const XMLElement* registers);

// One "peripheral" element: its groups, then its interrupts.
void readPeripheral(SVDReadContext& context, const XMLElement* peripheral);

}  // namespace regmill
