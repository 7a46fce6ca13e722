// The one depth-first search over a tree: nodes in document order, each before its
// children, from a start node (its siblings are not searched). An explicit stack
// rather than recursion, so that any depth of nesting is searched.
#pragma once
#include <algorithm>
#include <vector>

#include "xml/xml_node.h"

namespace regmill {

// The first node for which `matches(node)` holds, or null.
template <typename Matches>
XMLNode* findDepthFirst(XMLNode* start, Matches matches) {
  if (start == nullptr) return nullptr;
  std::vector<XMLNode*> pending{start};
  while (!pending.empty()) {
    XMLNode* node = pending.back();
    pending.pop_back();
    if (matches(node)) return node;
    size_t firstOfChildren = pending.size();
    for (XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling())
      pending.push_back(child);
    std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(firstOfChildren), pending.end());
  }
  return nullptr;
}

}  // namespace regmill
