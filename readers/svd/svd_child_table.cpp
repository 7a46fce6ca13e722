#include "readers/svd/svd_child_table.h"

#include <cstring>
#include <optional>
#include <string_view>


namespace regmill {

namespace {

constexpr std::array<std::string_view, static_cast<size_t>(SVDTag::Count)> kSVDTagNames = {
    "name", "description", "width", "size", "access", "resetValue", "resetMask", "peripherals", "cpu",
    "mpuPresent", "fpuPresent", "nvicPrioBits", "baseAddress", "prependToName", "appendToName",
    "registers", "addressOffset", "alternateCluster", "dim", "dimIncrement", "dimIndex", "readAction",
    "fields", "bitOffset", "bitWidth", "bitRange", "lsb", "msb", "enumeratedValues", "value"};

// A child's tag is found with one probe of a small table, by its length, first and
// last byte, and one comparison; the tags are known to take one slot each.
constexpr size_t kTagSlots = 1024;
constexpr uint8_t kNoTag = 0xFF;

constexpr size_t tagSlot(std::string_view name) {
  return (name.size() * 131 + static_cast<unsigned char>(name.front()) * 7 + static_cast<unsigned char>(name.back())) %
         kTagSlots;
}

struct TagSlots {
  std::array<uint8_t, kTagSlots> index{};
  bool eachInItsOwnSlot = true;
  constexpr TagSlots() {
    index.fill(kNoTag);
    for (size_t i = 0; i < kSVDTagNames.size(); ++i) {
      uint8_t& slot = index[tagSlot(kSVDTagNames[i])];
      if (slot != kNoTag) eachInItsOwnSlot = false;
      slot = static_cast<uint8_t>(i);
    }
  }
};
constexpr TagSlots kTagTable;
static_assert(kTagTable.eachInItsOwnSlot, "two SVD tags share a slot: change tagSlot");

std::optional<SVDTag> classifyTag(const char* tag) {
  std::string_view name(tag);
  if (name.empty()) return std::nullopt;
  uint8_t index = kTagTable.index[tagSlot(name)];
  if (index == kNoTag || kSVDTagNames[index] != name) return std::nullopt;
  return static_cast<SVDTag>(index);
}

}  // namespace

ChildTable::ChildTable(const XMLElement* element) {
  first_.fill(nullptr);
  if (element == nullptr) return;
  for (const XMLNode* node = element->firstChild(); node != nullptr; node = node->nextSibling()) {
    ++childCount_;
    if (!node->isElement()) continue;
    std::optional<SVDTag> found = classifyTag(node->getName());
    if (!found) continue;
    const XMLElement*& slot = first_[static_cast<size_t>(*found)];
    if (slot == nullptr) slot = static_cast<const XMLElement*>(node);
  }
}

}  // namespace regmill
