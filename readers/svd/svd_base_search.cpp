#include "readers/svd/svd_base_search.h"

#include <cstring>
#include <functional>
#include <vector>

#include "readers/svd/svd_child_table.h"
#include "readers/svd/svd_text.h"

namespace regmill {

namespace {

// Visits the sibling chain from `first` with every subtree, a node's descendants
// before the node itself, until `visit` returns true. Iterative, so that the depth
// of the document costs no stack.
template <typename Visit>
void visitDescendantsFirst(const XMLNode* first, Visit visit) {
  std::vector<const XMLNode*> open;
  const XMLNode* node = first;
  while (true) {
    for (; node != nullptr; node = node->firstChild()) open.push_back(node);
    if (open.empty()) return;
    const XMLNode* done = open.back();
    open.pop_back();
    if (visit(done)) return;
    node = done->nextSibling();
  }
}

bool hasTag(const XMLNode* node, const char* tag) {
  return node->isElement() && std::strcmp(node->getName(), tag) == 0;
}

const XMLElement* nameChild(const XMLNode* element) { return findChild(element->firstChild(), "name"); }

bool isNamedMatch(const XMLNode* node, const char* tag, std::string_view wanted) {
  if (!hasTag(node, tag)) return false;
  const XMLElement* name = nameChild(node);
  return name != nullptr && (wanted.empty() || TextValue(name) == wanted);
}

}  // namespace

const XMLElement* findNamedElement(const XMLNode* first, const char* tag, bool recursive, std::string_view wanted) {
  if (!recursive) {
    for (const XMLNode* node = first; node != nullptr; node = node->nextSibling())
      if (isNamedMatch(node, tag, wanted)) return static_cast<const XMLElement*>(node);
    return nullptr;
  }
  const XMLElement* found = nullptr;
  visitDescendantsFirst(first, [&](const XMLNode* node) {
    if (isNamedMatch(node, tag, wanted)) found = static_cast<const XMLElement*>(node);
    return found != nullptr;
  });
  return found;
}

void BaseSearchIndex::NamedElements::add(std::string_view name, const XMLElement* element) {
  byName.try_emplace(name, element);  // the first in search order stays
  if (firstNamed == nullptr) firstNamed = element;
}

const XMLElement* BaseSearchIndex::NamedElements::find(std::string_view wanted) const {
  if (wanted.empty()) return firstNamed;
  auto found = byName.find(wanted);
  return found == byName.end() ? nullptr : found->second;
}

size_t BaseSearchIndex::SiblingKeyHash::operator()(const SiblingKey& key) const {
  size_t hash = std::hash<std::string_view>()(key.name);
  return hash ^ (std::hash<const void*>()(key.holder) + 0x9e3779b97f4a7c15ULL + (hash << 6) + (hash >> 2));
}

void BaseSearchIndex::indexSiblings(NamedSiblings& siblings, const XMLNode* holder) {
  const XMLElement*& firstNamed = siblings.firstNamed[holder];
  for (const XMLNode* node = holder == nullptr ? firstTopLevelNode_ : holder->firstChild(); node != nullptr;
       node = node->nextSibling()) {
    if (!hasTag(node, siblings.tag)) continue;
    const XMLElement* name = nameChild(node);
    if (name == nullptr) continue;
    auto* element = static_cast<const XMLElement*>(node);
    siblings.byName.try_emplace(SiblingKey{holder, nameOf(name)}, element);  // the first in order stays
    if (firstNamed == nullptr) firstNamed = element;
  }
}

const XMLElement* BaseSearchIndex::findSibling(NamedSiblings& siblings, const XMLNode* holder,
                                               std::string_view wanted) {
  auto indexed = siblings.firstNamed.find(holder);
  if (indexed == siblings.firstNamed.end()) {
    indexSiblings(siblings, holder);
    indexed = siblings.firstNamed.find(holder);
  }
  if (wanted.empty()) return indexed->second;
  auto found = siblings.byName.find(SiblingKey{holder, wanted});
  return found == siblings.byName.end() ? nullptr : found->second;
}

void BaseSearchIndex::indexDocument() {
  documentIndexed_ = true;
  // The walk goes in the order of the whole-document search, so the first element
  // added under a name is the one that search finds first.
  visitDescendantsFirst(firstTopLevelNode_, [this](const XMLNode* node) {
    bool isField = hasTag(node, "field");
    if (!isField && !hasTag(node, "enumeratedValues")) return false;
    if (const XMLElement* name = nameChild(node))
      (isField ? fields_ : valueLists_).add(nameOf(name), static_cast<const XMLElement*>(node));
    return false;
  });
}

std::string_view BaseSearchIndex::nameOf(const XMLElement* nameChild) {
  TextValue text(nameChild);
  // A view into the document stays valid; a joined text needs a home of its own.
  if (text.refersToDocument()) return text.view();
  return joinedNames_.emplace_back(text.view());
}

const XMLElement* BaseSearchIndex::find(const XMLElement* element, std::string_view wanted) {
  const char* tag = element->getName();
  bool isField = std::strcmp(tag, "field") == 0;
  if (isField || std::strcmp(tag, "enumeratedValues") == 0) {
    if (!documentIndexed_) indexDocument();
    return (isField ? fields_ : valueLists_).find(wanted);
  }
  if (std::strcmp(tag, "register") == 0) return findSibling(registers_, element->parent(), wanted);
  if (std::strcmp(tag, "peripheral") == 0) return findSibling(peripherals_, element->parent(), wanted);
  return nullptr;
}

}  // namespace regmill
