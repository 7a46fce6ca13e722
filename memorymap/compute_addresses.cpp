#include "memorymap/compute_addresses.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/parse_number.h"
#include "base/text.h"
#include "expr/simple_expression_parser.h"

namespace regmill {

namespace {

// Address texts repeat all over a device (every peripheral's registers sit at the
// same offsets, every field at the same few bit numbers), and the parser that knows
// only numbers gives a text the same value every time. So each distinct text is
// evaluated once during a walk; the cache goes with the walk.
class TextEvaluator {
 public:
  uint32_t evaluate(const char* text, bool* ok) {
    std::string_view key(text);
    auto found = results_.find(key);
    if (found == results_.end()) {
      Result result;
      result.value = static_cast<uint32_t>(
          sharedExpressionParser().evaluateUnsigned(QString::fromUtf8(text), &result.ok));
      found = results_.emplace(std::string(key), result).first;
    }
    *ok = found->second.ok;
    return found->second.value;
  }

 private:
  struct Result {
    uint32_t value = 0;
    bool ok = false;
  };
  std::unordered_map<std::string, Result, TransparentStringHash, std::equal_to<>> results_;
};


// 0 for an empty text; otherwise the value, plus base when the text begins with "+".
uint32_t startAddress(const char* text, uint32_t base, TextEvaluator& evaluator) {
  if (text == nullptr || *text == '\0') return 0;
  bool ok = false;
  uint32_t address = evaluator.evaluate(text, &ok);
  return text[0] == '+' ? address + base : address;
}

bool isContainer(ElementKind kind) {
  return kind == ElementKind::MemorySegment || kind == ElementKind::ProgramSection || kind == ElementKind::RegisterGroup;
}

bool isRegisterPart(ElementKind kind) { return kind == ElementKind::Register || kind == ElementKind::BitField || kind == ElementKind::Enum; }

// Settles one element's address and size and gives the base for its children.
uint32_t computeElement(MemoryMapElement& element, uint32_t base, TextEvaluator& evaluator) {
  const ElementKind kind = element.kind();
  uint32_t childBase = base;
  if (element.hasAttribute("start")) {
    const char* start = element.getAttribute("start");
    if (isContainer(kind)) {
      element.address = startAddress(start, base, evaluator);
      childBase = element.address;
    } else if (kind == ElementKind::Register) {
      element.address = startAddress(start, base, evaluator);
    } else if (kind == ElementKind::BitField || kind == ElementKind::Enum) {
      element.address = startAddress(start, 0, evaluator);
    }
  }
  if (element.hasAttribute("size")) {
    const char* size = element.getAttribute("size");
    if (isContainer(kind)) {
      bool ok = false;
      uint32_t value = size != nullptr ? evaluator.evaluate(size, &ok) : 0;
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
  TextEvaluator evaluator;
  struct Pending {
    XMLNode* next;  // the next sibling to handle
    uint32_t base;  // the base its parent settled
  };
  std::vector<Pending> stack;
  stack.push_back({element->firstChild(), computeElement(*element, base, evaluator)});
  while (!stack.empty()) {
    XMLNode* node = stack.back().next;
    if (node == nullptr) {
      stack.pop_back();
      continue;
    }
    stack.back().next = node->nextSibling();
    auto* child = dynamic_cast<MemoryMapElement*>(node);
    if (child == nullptr) continue;
    uint32_t childBase = computeElement(*child, stack.back().base, evaluator);
    stack.push_back({child->firstChild(), childBase});
  }
}

}  // namespace regmill
