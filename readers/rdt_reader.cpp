#include "readers/rdt_reader.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "readers/reader_support.h"
#include "xml/xml_document.h"

namespace regmill {

XMLElement* findBoardCPU(XMLNode* start, const char* id) {
  if (start == nullptr) return nullptr;
  // An explicit stack rather than recursion, so that any depth of nesting is searched.
  std::vector<XMLNode*> pending{start};
  while (!pending.empty()) {
    XMLNode* node = pending.back();
    pending.pop_back();
    if (!node->isElement()) continue;
    auto* element = static_cast<XMLElement*>(node);
    const char* ownId = element->getAttribute("id");
    if (std::strcmp(element->getName(), "cpu") == 0 && ownId != nullptr && std::strcmp(ownId, id) == 0)
      return element;
    size_t firstOfChildren = pending.size();
    for (XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling())
      pending.push_back(child);
    std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(firstOfChildren), pending.end());
  }
  return nullptr;
}

namespace {

// Builds the groups of one processor. Attribute values are copied as written; an
// attribute absent in the input is set with a null value, written as an empty string.
class RDTBuilder {
 public:
  explicit RDTBuilder(MemoryMap& document) : document_(document) {}

  // False when an instance's register file can't be loaded; failedFile() names it.
  bool build(XMLElement* cpu, MemoryMapElement* root) {
    for (XMLNode* child = cpu->firstChild(); child != nullptr; child = child->nextSibling()) {
      if (!child->isElement()) break;
      if (std::strcmp(child->getName(), "instance") != 0) continue;
      if (!addInstance(root, static_cast<XMLElement*>(child))) return false;
    }
    return true;
  }

  const std::string& failedFile() const { return failedFile_; }

 private:
  bool addInstance(MemoryMapElement* root, XMLElement* instance) {
    MemoryMapElement* group = appendNewElement(document_, root, "RegisterGroup");
    group->setAttributeCopy("name", instance->getAttribute("id"));
    group->setAttributeCopy("start", instance->getAttribute("baseaddr"));
    const char* file = instance->getAttribute("xml");
    XMLDocument registers(false, XMLStorage::Arena);
    if (file == nullptr || !registers.load(file).ok()) {
      failedFile_ = file == nullptr ? "" : file;
      return false;
    }
    // A file whose text doesn't begin with a tag loads without a root: the group stays empty.
    if (XMLNode* fileRoot = registers.root())
      forEachChildUntilText(fileRoot, "register", [&](XMLElement* reg) { addRegister(group, reg); });
    return true;
  }

  // The start is the offset from the group; a register without an offset gets an
  // empty start rather than a lone "+". The format gives registers no size.
  void addRegister(MemoryMapElement* group, XMLElement* reg) {
    MemoryMapElement* element = appendNewElement(document_, group, "Register");
    element->setAttributeCopy("name", reg->getAttribute("id"));
    const char* offset = reg->getAttribute("offset");
    element->setAttributeCopy("start", offset == nullptr ? nullptr : (std::string("+") + offset).c_str());
    forEachChildUntilText(reg, "bitfield", [&](XMLElement* field) { addBitField(element, field); });
  }

  // Reserved bits are left out with their values; a field without an id is kept, nameless.
  void addBitField(MemoryMapElement* reg, XMLElement* field) {
    const char* id = field->getAttribute("id");
    if (id != nullptr && std::strcmp(id, "RESERVED") == 0) return;
    MemoryMapElement* element = appendNewElement(document_, reg, "BitField");
    element->setAttributeCopy("name", id);
    element->setAttributeCopy("start", field->getAttribute("end"));
    element->setAttributeCopy("size", field->getAttribute("width"));
    for (XMLNode* child = field->firstChild(); child != nullptr && child->isElement(); child = child->nextSibling()) {
      auto* value = static_cast<XMLElement*>(child);
      MemoryMapElement* enumElement = appendNewElement(document_, element, "Enum");
      enumElement->setAttributeCopy("name", value->getAttribute("id"));
      enumElement->setAttributeCopy("start", value->getAttribute("value"));
    }
  }

  MemoryMap& document_;
  std::string failedFile_;
};

}  // namespace

RDTReadResult readRDT(XMLNode* root, MemoryMap& document) {
  RDTReadResult result;
  XMLElement* cpu = findBoardCPU(root, kRDTProcessorId);
  if (cpu == nullptr) return result;
  result.cpuFound = true;
  MemoryMapElement* output = document.newElement("Root");
  document.setRoot(output);
  RDTBuilder builder(document);
  if (!builder.build(cpu, output)) result.unreadableFile = builder.failedFile();
  return result;
}

}  // namespace regmill
