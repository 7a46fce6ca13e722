#include "readers/rdt_reader.h"

#include <cstring>
#include <memory>
#include <string>
#include <unordered_map>

#include "base/text.h"
#include "readers/reader_support.h"
#include "xml/depth_first.h"
#include "xml/xml_document.h"

namespace regmill {

XMLElement* findBoardCPU(XMLNode* start, const char* id) {
  return static_cast<XMLElement*>(findDepthFirst(start, [id](XMLNode* node) {
    if (!node->isElement() || std::strcmp(node->getName(), "cpu") != 0) return false;
    const char* ownId = static_cast<XMLElement*>(node)->getAttribute("id");
    return ownId != nullptr && std::strcmp(ownId, id) == 0;
  }));
}

namespace {

// Reserved bits are left out with their values.
bool isReserved(const XMLElement* field) {
  const char* id = field->getAttribute("id");
  return id != nullptr && std::strcmp(id, "RESERVED") == 0;
}

// Builds the groups of one processor. Attribute values are copied as written; an
// attribute absent in the input is set with a null value, written as an empty string.
class RDTBuilder {
 public:
  RDTBuilder(MemoryMap& document, size_t elementLimit) : maker_(document, elementLimit) {}

  // The elements are counted before any is made, so that a register file named by
  // thousands of instances is refused at once instead of after filling the budget.
  Status build(XMLElement* cpu, MemoryMapElement* root) {
    uint64_t planned = 0;
    Status counted = forEachInstance(cpu, [&](XMLElement* instance) -> Status {
      Expected<const XMLDocument*> registers = registerFileOf(instance);
      if (!registers) return registers.status();
      planned += 1 + elementsPerInstance(*registers);
      return Status();
    });
    if (!counted) return counted;
    if (!maker_.budget().fits(planned)) return Status::failure(kElementBudgetSpent);
    return forEachInstance(cpu, [&](XMLElement* instance) -> Status {
      if (Status added = addInstance(root, instance); !added) return added;
      if (maker_.budget().refused()) return Status::failure(kElementBudgetSpent);
      return Status();
    });
  }

 private:
  // The instances up to the first child that is no element, until one fails.
  template <typename Visit>
  static Status forEachInstance(XMLElement* cpu, Visit visit) {
    for (XMLNode* child = cpu->firstChild(); child != nullptr; child = child->nextSibling()) {
      if (!child->isElement()) break;
      if (std::strcmp(child->getName(), "instance") != 0) continue;
      if (Status visited = visit(static_cast<XMLElement*>(child)); !visited) return visited;
    }
    return Status();
  }

  Expected<const XMLDocument*> registerFileOf(XMLElement* instance) {
    const char* file = instance->getAttribute("xml");
    if (file == nullptr) return Status::failure("the instance names no register file");
    return registerFile(file);
  }

  // What addRegister makes for the registers of one file, counted once per file.
  uint64_t elementsPerInstance(const XMLDocument* registers) {
    auto [counted, isNew] = elementCounts_.try_emplace(registers, 0);
    if (!isNew || registers->root() == nullptr) return counted->second;
    uint64_t count = 0;
    forEachChildUntilText(registers->root(), "register", [&](XMLElement* reg) {
      ++count;
      forEachChildUntilText(reg, "bitfield", [&](XMLElement* field) {
        if (isReserved(field)) return;
        ++count;
        for (XMLNode* child = field->firstChild(); child != nullptr && child->isElement(); child = child->nextSibling())
          ++count;
      });
    });
    return counted->second = count;
  }

  Status addInstance(MemoryMapElement* root, XMLElement* instance) {
    MemoryMapElement* group = maker_.append(root, "RegisterGroup");
    if (group == nullptr) return Status();
    group->setAttributeCopy("name", instance->getAttribute("id"));
    group->setAttributeCopy("start", instance->getAttribute("baseaddr"));
    Expected<const XMLDocument*> registers = registerFileOf(instance);
    if (!registers) return registers.status();
    // A file whose text doesn't begin with a tag loads without a root: the group stays empty.
    if (XMLNode* fileRoot = (*registers)->root())
      forEachChildUntilText(fileRoot, "register", [&](XMLElement* reg) { addRegister(group, reg); });
    return Status();
  }

  // The parsed register file, read at its first use only.
  Expected<const XMLDocument*> registerFile(const char* name) {
    auto found = registerFiles_.find(std::string_view(name));
    if (found != registerFiles_.end()) return found->second.get();
    auto document = std::make_unique<XMLDocument>(false, XMLStorage::Arena);
    if (Status loaded = document->load(name); !loaded) return loaded;
    return registerFiles_.emplace(name, std::move(document)).first->second.get();
  }

  // The start is the offset from the group; a register without an offset gets an
  // empty start rather than a lone "+". The format gives registers no size.
  void addRegister(MemoryMapElement* group, XMLElement* reg) {
    MemoryMapElement* element = maker_.append(group, "Register");
    if (element == nullptr) return;
    element->setAttributeCopy("name", reg->getAttribute("id"));
    const char* offset = reg->getAttribute("offset");
    element->setAttributeCopy("start", offset == nullptr ? nullptr : (std::string("+") + offset).c_str());
    forEachChildUntilText(reg, "bitfield", [&](XMLElement* field) { addBitField(element, field); });
  }

  // A field without an id is kept, nameless.
  void addBitField(MemoryMapElement* reg, XMLElement* field) {
    if (isReserved(field)) return;
    MemoryMapElement* element = maker_.append(reg, "BitField");
    if (element == nullptr) return;
    element->setAttributeCopy("name", field->getAttribute("id"));
    element->setAttributeCopy("start", field->getAttribute("end"));
    element->setAttributeCopy("size", field->getAttribute("width"));
    for (XMLNode* child = field->firstChild(); child != nullptr && child->isElement(); child = child->nextSibling()) {
      auto* value = static_cast<XMLElement*>(child);
      MemoryMapElement* enumElement = maker_.append(element, "Enum");
      if (enumElement == nullptr) return;
      enumElement->setAttributeCopy("name", value->getAttribute("id"));
      enumElement->setAttributeCopy("start", value->getAttribute("value"));
    }
  }

  BudgetedMaker maker_;
  std::unordered_map<std::string, std::unique_ptr<XMLDocument>, TransparentStringHash, std::equal_to<>>
      registerFiles_;
  std::unordered_map<const XMLDocument*, uint64_t> elementCounts_;
};

}  // namespace

Expected<bool> readRDT(XMLNode* root, MemoryMap& document, size_t elementLimit) {
  XMLElement* cpu = findBoardCPU(root, kRDTProcessorId);
  if (cpu == nullptr) return false;
  MemoryMapElement* output = document.newElement("Root");
  document.setRoot(output);
  RDTBuilder builder(document, elementLimit);
  if (Status built = builder.build(cpu, output); !built) return built;
  return true;
}

}  // namespace regmill
