#include "expr/compute_addresses.h"

#include <vector>

#include "base/parse_number.h"
#include "expr/simple_expression_parser.h"

namespace regmill {

namespace {

uint32_t evaluateText(const char* text, bool* ok) {
  return static_cast<uint32_t>(sharedExpressionParser().evaluateUnsigned(QString::fromUtf8(text), ok));
}

// 0 for an empty text; otherwise the value, plus base when the text begins with "+".
uint32_t startAddress(const char* text, uint32_t base) {
  if (text == nullptr || *text == '\0') return 0;
  bool ok = false;
  uint32_t address = evaluateText(text, &ok);
  return text[0] == '+' ? address + base : address;
}

bool isContainer(ElementKind kind) {
  return kind == MemorySegmentKind || kind == ProgramSectionKind || kind == RegisterGroupKind;
}

bool isRegisterPart(ElementKind kind) { return kind == RegisterKind || kind == BitFieldKind || kind == EnumKind; }

// Settles one element's address and size and gives the base for its children.
uint32_t computeElement(MemoryMapElement& element, uint32_t base) {
  const ElementKind kind = element.kind();
  uint32_t childBase = base;
  if (element.hasAttribute("start")) {
    const char* start = element.getAttribute("start");
    if (isContainer(kind)) {
      element.address = startAddress(start, base);
      childBase = element.address;
    } else if (kind == RegisterKind) {
      element.address = startAddress(start, base);
    } else if (kind == BitFieldKind || kind == EnumKind) {
      element.address = startAddress(start, 0);
    }
  }
  if (element.hasAttribute("size")) {
    const char* size = element.getAttribute("size");
    if (isContainer(kind)) {
      bool ok = false;
      uint32_t value = size != nullptr ? evaluateText(size, &ok) : 0;
      if (ok) element.size = value;
    } else if (isRegisterPart(kind)) {
      element.size = static_cast<uint32_t>(parseNumber(size != nullptr ? size : ""));
    }
  }
  return childBase;
}

}  // namespace

// Depth first in document order, with an explicit stack of sibling chains, so
// that no depth of tree can exhaust the call stack.
void computeAddresses(MemoryMapElement* element, uint32_t base) {
  if (element == nullptr) return;
  struct Pending {
    XMLNode* next;  // the next sibling to handle
    uint32_t base;  // the base its parent settled
  };
  std::vector<Pending> stack;
  stack.push_back({element->firstChild(), computeElement(*element, base)});
  while (!stack.empty()) {
    XMLNode* node = stack.back().next;
    if (node == nullptr) {
      stack.pop_back();
      continue;
    }
    stack.back().next = node->nextSibling();
    auto* child = dynamic_cast<MemoryMapElement*>(node);
    if (child == nullptr) continue;
    uint32_t childBase = computeElement(*child, stack.back().base);
    stack.push_back({child->firstChild(), childBase});
  }
}

}  // namespace regmill
