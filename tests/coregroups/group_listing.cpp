#include "tests/coregroups/group_listing.h"

#include <cstring>

namespace regmill::testing {

namespace {

std::string attributeOrDash(const MemoryMapElement* element, const char* name) {
  const char* value = element->getAttribute(name);
  return value == nullptr ? "-" : value;
}

std::string joined(const std::vector<std::string>& parts, const char* separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

}  // namespace

CoreDocument::CoreDocument(bool withInterruptTable) {
  file.setRoot(file.newElement("Processor"));
  if (withInterruptTable) file.setInterruptTableSize(256);
}

void CoreDocument::name(std::initializer_list<std::pair<int, const char*>> interrupts) {
  for (const auto& [index, name] : interrupts) file.storeInterruptName(index, name);
}

MemoryMapElement* CoreDocument::group(const char* name) {
  return findElement(file.root(), RegisterGroupKind, "name", name, true);
}

std::string CoreDocument::groupNames() {
  std::vector<std::string> names;
  for (MemoryMapElement* element : children(file.root())) names.push_back(attributeOrDash(element, "name"));
  return joined(names, " ");
}

std::vector<MemoryMapElement*> children(const MemoryMapElement* parent) {
  std::vector<MemoryMapElement*> result;
  if (parent == nullptr) return result;
  for (XMLNode* node = parent->firstChild(); node != nullptr; node = node->nextSibling())
    if (auto* element = dynamic_cast<MemoryMapElement*>(node)) result.push_back(element);
  return result;
}

MemoryMapElement* child(const MemoryMapElement* parent, const char* name) {
  for (MemoryMapElement* element : children(parent)) {
    const char* own = element->getAttribute("name");
    if (own != nullptr && std::strcmp(own, name) == 0) return element;
  }
  return nullptr;
}

std::string registerLine(const MemoryMapElement* registerElement) {
  std::string line = attributeOrDash(registerElement, "name") + " " + attributeOrDash(registerElement, "start") +
                     " " + attributeOrDash(registerElement, "size") + " " +
                     attributeOrDash(registerElement, "access") + " :";
  std::vector<std::string> fields;
  for (MemoryMapElement* field : children(registerElement))
    fields.push_back(attributeOrDash(field, "name") + " " + attributeOrDash(field, "start") + ":" +
                     attributeOrDash(field, "size"));
  if (!fields.empty()) line += " " + joined(fields, ", ");
  return line;
}

std::vector<std::string> registerLines(const MemoryMapElement* group) {
  std::vector<std::string> lines;
  for (MemoryMapElement* registerElement : children(group)) lines.push_back(registerLine(registerElement));
  return lines;
}

std::string registerLine(const MemoryMapElement* group, const char* name) {
  const MemoryMapElement* registerElement = child(group, name);
  return registerElement == nullptr ? std::string("missing ") + name : registerLine(registerElement);
}

std::string registerNames(const MemoryMapElement* group) {
  std::vector<std::string> names;
  for (MemoryMapElement* registerElement : children(group)) names.push_back(attributeOrDash(registerElement, "name"));
  return joined(names, " ");
}

std::string attributeOrder(const MemoryMapElement* element) {
  std::vector<std::string> names;
  for (const XMLAttribute* attribute = element->attributes(); attribute != nullptr; attribute = attribute->next)
    names.push_back(attribute->name);
  return joined(names, " ");
}

}  // namespace regmill::testing
