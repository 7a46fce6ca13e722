// The searches by which one step of a "derivedFrom" chain finds its base. A base is
// matched by the text of its "name" child alone, never by a dotted path:
//   peripheral        - among the direct children of its "peripherals" element
//   register          - among the direct children of the element that holds it
//   field             - through the whole document
//   enumeratedValues  - through the whole document
// The whole-document walk tests a node's descendants before the node itself. A
// wanted name that is empty matches any element of the tag that has a "name" child.
#pragma once
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include "xml/xml_node.h"

namespace regmill {

// The plain search: the sibling chain from `first` and, if `recursive`, the subtrees
// under it, descendants first. The first element with the tag whose "name" child
// text equals `wanted` (any named one if `wanted` is empty), or null.
const XMLElement* findNamedElement(const XMLNode* first, const char* tag, bool recursive, std::string_view wanted);

// The same four searches answered from indexes, with the same first match. Each index
// is built once, at the first question that needs it: the whole-document one in one
// walk of the document, a sibling one in one pass over the holder's children. The
// document must outlive the index.
class BaseSearchIndex {
 public:
  explicit BaseSearchIndex(const XMLNode* firstTopLevelNode) : firstTopLevelNode_(firstTopLevelNode) {}
  BaseSearchIndex(const BaseSearchIndex&) = delete;
  BaseSearchIndex& operator=(const BaseSearchIndex&) = delete;

  // The base that `element` (a peripheral, register, field or enumeratedValues) finds
  // for the wanted name in its own search area; null for other tags or no match.
  const XMLElement* find(const XMLElement* element, std::string_view wanted);

 private:
  struct NamedElements {
    std::unordered_map<std::string_view, const XMLElement*> byName;
    const XMLElement* firstNamed = nullptr;
    void add(std::string_view name, const XMLElement* element);
    const XMLElement* find(std::string_view wanted) const;
  };
  struct SiblingKey {
    const XMLNode* holder;
    std::string_view name;
    bool operator==(const SiblingKey&) const = default;
  };
  struct SiblingKeyHash {
    size_t operator()(const SiblingKey& key) const;
  };
  struct NamedSiblings {
    const char* tag;
    std::unordered_map<SiblingKey, const XMLElement*, SiblingKeyHash> byName;
    // Per holder whose children are indexed, its first named child (or null).
    std::unordered_map<const XMLNode*, const XMLElement*> firstNamed;
  };

  void indexDocument();
  void indexSiblings(NamedSiblings& siblings, const XMLNode* holder);
  const XMLElement* findSibling(NamedSiblings& siblings, const XMLNode* holder, std::string_view wanted);
  std::string_view nameOf(const XMLElement* nameChild);

  const XMLNode* firstTopLevelNode_;
  bool documentIndexed_ = false;
  NamedElements fields_;
  NamedElements valueLists_;
  NamedSiblings registers_{"register", {}, {}};
  NamedSiblings peripherals_{"peripheral", {}, {}};
  std::deque<std::string> joinedNames_;  // names made of several text pieces
};

}  // namespace regmill
