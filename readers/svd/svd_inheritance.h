// How a derived element takes values over from its base. A base is no merge of
// models, only a second place in which a child is looked up: "own, else base, by
// text" reads the base's child when the own text is empty; "own, else base, by
// element" takes the base's child when the element has none of that tag.
#pragma once
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "readers/svd/svd_base_search.h"
#include "readers/svd/svd_child_table.h"

namespace regmill {

// An element paired with its base; without a base, `base` is the empty table.
struct Derivation {
  ChildTable own;
  ChildTable base;

  TextValue text(SVDTag tag) const;                // own, else base, by text
  const XMLElement* element(SVDTag tag) const;     // own, else base, by element
};

// Follows "derivedFrom" chains through the base searches of one parsed document. Each
// element's chain is worked out once and remembered, so long chains cost their
// length once, not once per element that passes through them.
class DerivationIndex {
 public:
  explicit DerivationIndex(const XMLNode* firstTopLevelNode) : search_(firstTopLevelNode) {}

  // The element at the end of the chain of "derivedFrom" attributes that starts at
  // `element`: A derived from B derived from C takes C, and nothing of B. Null when
  // `element` has no "derivedFrom" or its first step finds nothing. A chain that
  // comes back to an element it has passed ends at the last element reached before
  // the repeat; an element that names itself is its own base.
  const XMLElement* resolveDerived(const XMLElement* element);

  // The element with its base resolved.
  Derivation derive(const XMLElement* element);

 private:
  // What a chain arriving at an element from outside its cycle ends at.
  struct ChainEnd {
    const XMLElement* arrival = nullptr;
    bool hasNext = false;   // false: the chain ends at this element
    int32_t walkIndex = -1;  // the element's place in the walk under way, -1 once done
  };

  const XMLElement* nextInChain(const XMLElement* element);
  const ChainEnd& followChain(const XMLElement* element);
  void closeCycle(const std::vector<const XMLElement*>& walk, size_t first);
  ChildTable tableOf(const XMLElement* base);

  BaseSearchIndex search_;
  std::unordered_map<const XMLElement*, ChainEnd> chains_;
  // Tables of bases with many children: many elements deriving from one base with
  // thousands of children must not pass over them all once each.
  std::unordered_map<const XMLElement*, ChildTable> largeBaseTables_;
};

}  // namespace regmill
