// Small helpers that the XML-based readers share: the walk over an element's
// children that ends at the first child that isn't an element, and appending a new
// memory-map element to its parent, within the read's element budget.
#pragma once
#include <cstring>

#include "memorymap/element_budget.h"
#include "memorymap/memory_map.h"
#include "xml/xml_node.h"

namespace regmill {

// Calls visit(XMLElement*) for each child of `parent` with the tag, in order. The
// walk stops at the first child that isn't an element: with text nodes off that can
// only be a CDATA section, and what stands behind it is not read.
template <typename Visit>
void forEachChildUntilText(XMLNode* parent, const char* tag, Visit visit) {
  for (XMLNode* child = parent->firstChild(); child != nullptr; child = child->nextSibling()) {
    if (!child->isElement()) return;
    if (std::strcmp(child->getName(), tag) == 0) visit(static_cast<XMLElement*>(child));
  }
}

// Makes an element of the tag and appends it to `parent` before any attribute is set.
inline MemoryMapElement* appendNewElement(MemoryMap& document, XMLNode* parent, const char* tag) {
  MemoryMapElement* element = document.newElement(tag);
  parent->addChild(element);
  return element;
}

// Appends new elements while they fit the read's element budget.
class BudgetedMaker {
 public:
  BudgetedMaker(MemoryMap& document, size_t elementLimit) : document_(document), budget_(elementLimit) {}

  // As appendNewElement, booking one element; null once the budget is spent.
  MemoryMapElement* append(XMLNode* parent, const char* tag) {
    return budget_.reserve(1) ? appendNewElement(document_, parent, tag) : nullptr;
  }
  ElementBudget& budget() { return budget_; }
  MemoryMap& document() { return document_; }

 private:
  MemoryMap& document_;
  ElementBudget budget_;
};

// The failure of a read whose output would pass its element budget.
inline const char* kElementBudgetSpent = "the description asks for more elements than a read may make";

}  // namespace regmill
