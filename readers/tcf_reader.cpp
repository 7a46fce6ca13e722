#include "readers/tcf_reader.h"

#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/parse_number.h"
#include "base/text.h"
#include "readers/reader_support.h"

namespace regmill {

namespace {

// The "board" element when the tree has the shape of a board description.
XMLElement* boardOf(XMLNode* root) {
  if (root == nullptr || !root->isElement() || std::strcmp(root->getName(), "boards") != 0) return nullptr;
  XMLNode* first = root->firstChild();
  if (first == nullptr || !first->isElement() || std::strcmp(first->getName(), "board") != 0) return nullptr;
  return static_cast<XMLElement*>(first);
}

// Builds the groups of one board. Attribute values are copied as written; an attribute
// absent in the input is set with a null value, which is written as an empty string.
class TCFBuilder {
 public:
  TCFBuilder(MemoryMap& document, XMLElement* board, size_t elementLimit)
      : maker_(document, elementLimit), board_(board) {
    // The first enumeration of a name is the one a field finds.
    forEachChildUntilText(board_, "enumeration", [this](XMLElement* enumeration) {
      if (const char* name = enumeration->getAttribute("name")) enumerations_.try_emplace(name, enumeration);
    });
  }

  // False when the output would pass the element budget. The elements are counted
  // before any is made, so that an enumeration repeated under thousands of fields is
  // refused at once instead of after filling the budget.
  bool build(MemoryMapElement* root) {
    if (!maker_.budget().fits(plannedElements())) return false;
    forEachChildUntilText(board_, "peripheral", [&](XMLElement* peripheral) { addPeripheral(root, peripheral); });
    return !maker_.budget().refused();
  }

 private:
  // The groups, registers, fields and enums the board makes, as the builder walks it.
  uint64_t plannedElements() {
    uint64_t count = 0;
    forEachChildUntilText(board_, "peripheral", [&](XMLElement* peripheral) {
      ++count;
      forEachChildUntilText(peripheral, "register", [&](XMLElement* reg) {
        ++count;
        forEachChildUntilText(reg, "bitField", [&](XMLElement* field) {
          count += 1 + enumCount(field->getAttribute("enumerationId"));
        });
      });
    });
    return count;
  }

  // The names of the enumeration, counted once for all the fields that name it.
  uint64_t enumCount(const char* enumerationId) {
    const char* values = enumerationId == nullptr ? nullptr : enumerationValues(enumerationId);
    if (values == nullptr) return 0;
    auto [counted, isNew] = enumCounts_.try_emplace(enumerationId, 0);
    if (isNew) counted->second = splitSkippingEmpty(values, ',').size();
    return counted->second;
  }

  // The value list of the first enumeration of that name, or null.
  const char* enumerationValues(const char* enumerationId) const {
    auto found = enumerations_.find(enumerationId);
    return found == enumerations_.end() ? nullptr : found->second->getAttribute("values");
  }

  void addPeripheral(MemoryMapElement* root, XMLElement* peripheral) {
    MemoryMapElement* group = maker_.append(root, "RegisterGroup");
    if (group == nullptr) return;
    group->setAttributeCopy("name", peripheral->getAttribute("name"));
    group->setAttributeCopy("start", peripheral->getAttribute("offset"));
    forEachChildUntilText(peripheral, "register", [&](XMLElement* reg) { addRegister(group, reg); });
  }

  // The offset stays as written: it is not made relative to the group.
  void addRegister(MemoryMapElement* group, XMLElement* reg) {
    MemoryMapElement* element = maker_.append(group, "Register");
    if (element == nullptr) return;
    element->setAttributeCopy("name", reg->getAttribute("name"));
    element->setAttributeCopy("start", reg->getAttribute("offset"));
    element->setAttributeCopy("size", reg->getAttribute("size"));
    forEachChildUntilText(reg, "bitField", [&](XMLElement* field) { addBitField(element, field); });
  }

  // An absent low_bit or high_bit counts as 0; the width is 32-bit arithmetic that
  // wraps, so a high bit below the low one gives a negative size, printed as it is.
  void addBitField(MemoryMapElement* reg, XMLElement* field) {
    MemoryMapElement* element = maker_.append(reg, "BitField");
    if (element == nullptr) return;
    const char* lowText = field->getAttribute("low_bit");
    uint32_t low = parseUnsignedC(lowText);
    uint32_t high = parseUnsignedC(field->getAttribute("high_bit"));
    element->setAttributeCopy("name", field->getAttribute("name"));
    element->setAttributeCopy("start", lowText);
    element->setAttributeCopy("size", std::to_string(static_cast<int32_t>(high - low + 1u)).c_str());
    addEnums(element, field->getAttribute("enumerationId"));
  }

  // The value list is taken whole, however long: no name of it is cut off.
  void addEnums(MemoryMapElement* field, const char* enumerationId) {
    const char* values = enumerationId == nullptr ? nullptr : enumerationValues(enumerationId);
    if (values == nullptr) return;
    std::vector<std::string_view> names = splitSkippingEmpty(values, ',');
    if (!maker_.budget().reserve(names.size())) return;
    int32_t number = 0;
    for (std::string_view name : names) {
      MemoryMapElement* element = appendNewElement(maker_.document(), field, "Enum");
      element->setAttributeCopy("name", std::string(name).c_str());
      element->setAttributeCopy("start", std::to_string(number++).c_str());
    }
  }

  BudgetedMaker maker_;
  XMLElement* board_;
  // Keys point into the input tree, which outlives the builder.
  std::unordered_map<std::string_view, XMLElement*> enumerations_;
  std::unordered_map<std::string_view, uint64_t> enumCounts_;
};

}  // namespace

Expected<bool> readTCF(XMLNode* root, MemoryMap& document, size_t elementLimit) {
  XMLElement* board = boardOf(root);
  if (board == nullptr) return false;
  TCFBuilder builder(document, board, elementLimit);
  MemoryMapElement* output = document.newElement("Root");
  document.setRoot(output);
  if (!builder.build(output)) return Status::failure(kElementBudgetSpent);
  return true;
}

}  // namespace regmill
