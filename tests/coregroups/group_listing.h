// Test helpers: a document with a Processor root, and compact listings of generated
// elements, so that expectations read like the register tables they come from.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "memorymap/svd_file.h"

namespace regmill::testing {

// An SVDFile with a Processor root and an interrupt table of 256 entries that holds
// the given names at their interrupt numbers.
struct CoreDocument {
  explicit CoreDocument(std::initializer_list<std::pair<int, const char*>> interrupts = {}) {
    file.setRoot(file.newElement("Processor"));
    file.setInterruptTableSize(256);
    for (const auto& [index, name] : interrupts) file.storeInterruptName(index, name);
  }
  SVDFile file;
};

inline std::vector<MemoryMapElement*> children(const MemoryMapElement* parent) {
  std::vector<MemoryMapElement*> result;
  for (XMLNode* node = parent->firstChild(); node != nullptr; node = node->nextSibling())
    if (auto* element = dynamic_cast<MemoryMapElement*>(node)) result.push_back(element);
  return result;
}

// The child of that exact name, or null.
inline MemoryMapElement* child(const MemoryMapElement* parent, const std::string& name) {
  for (MemoryMapElement* element : children(parent))
    if (element->hasAttribute("name") && element->getAttribute("name") == name) return element;
  return nullptr;
}

// The attribute's value, or "?" where it is missing.
inline std::string value(const MemoryMapElement* element, const char* name) {
  return element->hasAttribute(name) ? element->getAttribute(name) : "?";
}

// Every attribute in its order: "name=NVIC start=0xE000E100 description=...".
inline std::string attributes(const MemoryMapElement* element) {
  std::string text;
  for (const XMLAttribute* attribute = element->attributes(); attribute != nullptr; attribute = attribute->next)
    text += std::string(text.empty() ? "" : " ") + attribute->name + "=" + attribute->value;
  return text;
}

// "NAME start[ size][ access]: FIELD start:size, ..." ("missing" for null), the
// register's attributes but its description in their order.
inline std::string registerLine(const MemoryMapElement* registerElement) {
  if (registerElement == nullptr) return "missing";
  std::string line;
  for (const XMLAttribute* attribute = registerElement->attributes(); attribute != nullptr; attribute = attribute->next)
    if (std::string(attribute->name) != "description") line += std::string(line.empty() ? "" : " ") + attribute->value;
  std::string separator = ": ";
  for (MemoryMapElement* field : children(registerElement)) {
    line += separator + value(field, "name") + " " + value(field, "start") + ":" + value(field, "size");
    separator = ", ";
  }
  return separator == ": " ? line + ":" : line;
}

// The names of the children, blank separated, or their register lines joined by "; ".
inline std::string names(const MemoryMapElement* parent, bool asLines = false) {
  std::string text;
  for (MemoryMapElement* element : children(parent))
    text += (text.empty() ? "" : asLines ? "; " : " ") + (asLines ? registerLine(element) : value(element, "name"));
  return text;
}
inline std::string listing(const MemoryMapElement* group) { return names(group, true); }

}  // namespace regmill::testing
