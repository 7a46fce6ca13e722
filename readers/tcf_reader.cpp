#include "readers/tcf_reader.h"

#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/parse_number.h"
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

// Each part of a ","-separated list, in order; empty parts vanish.
template <typename Visit>
void forEachListPart(std::string_view list, Visit visit) {
  while (!list.empty()) {
    size_t comma = list.find(',');
    std::string_view part = list.substr(0, comma);
    if (!part.empty()) visit(part);
    if (comma == std::string_view::npos) return;
    list.remove_prefix(comma + 1);
  }
}

// Builds the groups of one board. Attribute values are copied as written; an attribute
// absent in the input is set with a null value, which is written as an empty string.
class TCFBuilder {
 public:
  TCFBuilder(MemoryMap& document, XMLElement* board) : document_(document), board_(board) {
    // The first enumeration of a name is the one a field finds.
    forEachChildUntilText(board_, "enumeration", [this](XMLElement* enumeration) {
      if (const char* name = enumeration->getAttribute("name")) enumerations_.try_emplace(name, enumeration);
    });
  }

  void build(MemoryMapElement* root) {
    forEachChildUntilText(board_, "peripheral", [&](XMLElement* peripheral) { addPeripheral(root, peripheral); });
  }

 private:
  void addPeripheral(MemoryMapElement* root, XMLElement* peripheral) {
    MemoryMapElement* group = appendNewElement(document_, root, "RegisterGroup");
    group->setAttributeCopy("name", peripheral->getAttribute("name"));
    group->setAttributeCopy("start", peripheral->getAttribute("offset"));
    forEachChildUntilText(peripheral, "register", [&](XMLElement* reg) { addRegister(group, reg); });
  }

  // The offset stays as written: it is not made relative to the group.
  void addRegister(MemoryMapElement* group, XMLElement* reg) {
    MemoryMapElement* element = appendNewElement(document_, group, "Register");
    element->setAttributeCopy("name", reg->getAttribute("name"));
    element->setAttributeCopy("start", reg->getAttribute("offset"));
    element->setAttributeCopy("size", reg->getAttribute("size"));
    forEachChildUntilText(reg, "bitField", [&](XMLElement* field) { addBitField(element, field); });
  }

  // An absent low_bit or high_bit counts as 0; the width is 32-bit arithmetic that
  // wraps, so a high bit below the low one gives a negative size, printed as it is.
  void addBitField(MemoryMapElement* reg, XMLElement* field) {
    MemoryMapElement* element = appendNewElement(document_, reg, "BitField");
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
    if (enumerationId == nullptr) return;
    auto found = enumerations_.find(enumerationId);
    if (found == enumerations_.end()) return;
    const char* values = found->second->getAttribute("values");
    if (values == nullptr) return;
    int32_t number = 0;
    forEachListPart(values, [&](std::string_view name) {
      MemoryMapElement* element = appendNewElement(document_, field, "Enum");
      element->setAttributeCopy("name", std::string(name).c_str());
      element->setAttributeCopy("start", std::to_string(number++).c_str());
    });
  }

  MemoryMap& document_;
  XMLElement* board_;
  // Keys point into the input tree, which outlives the builder.
  std::unordered_map<std::string_view, XMLElement*> enumerations_;
};

}  // namespace

bool readTCF(XMLNode* root, MemoryMap& document) {
  XMLElement* board = boardOf(root);
  if (board == nullptr) return false;
  TCFBuilder builder(document, board);
  MemoryMapElement* output = document.newElement("Root");
  document.setRoot(output);
  builder.build(output);
  return true;
}

}  // namespace regmill
