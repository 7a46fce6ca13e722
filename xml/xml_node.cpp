#include "xml/xml_node.h"

#include <cstdlib>
#include <cstring>

#include "xml/xml_arena.h"
#include "xml/xml_string.h"

namespace regmill {

char* copyXmlString(const char* text, size_t length) {
  char* copy = static_cast<char*>(std::malloc(length + 1));
  if (copy == nullptr) std::abort();  // out of memory: nothing sensible is left to do
  if (length != 0) std::memcpy(copy, text, length);
  copy[length] = '\0';
  return copy;
}

char* copyXmlString(std::string_view text) { return copyXmlString(text.data(), text.size()); }

void freeXmlString(char* text) { std::free(text); }

XMLNode::~XMLNode() {
  freeXmlString(text_);
  // Children are destroyed without recursion and without a work list, so that a tree
  // of any depth is torn down without exhausting the stack or allocating: a child's
  // own children are spliced in front of its next sibling before it goes, which
  // takes the subtree apart in document order.
  XMLNode* node = firstChild_;
  firstChild_ = lastChild_ = nullptr;
  while (node != nullptr) {
    XMLNode* next = node->nextSibling_;
    if (node->firstChild_ != nullptr) {
      node->lastChild_->nextSibling_ = next;
      next = node->firstChild_;
      node->firstChild_ = node->lastChild_ = nullptr;
    }
    delete node;
    node = next;
  }
}

void XMLNode::addChild(XMLNode* node) {
  node->parent_ = this;
  node->nextSibling_ = nullptr;
  if (lastChild_ == nullptr)
    firstChild_ = node;
  else
    lastChild_->nextSibling_ = node;
  lastChild_ = node;
}

XMLNode* XMLNode::prependChild(XMLNode* node) {
  XMLNode* former = firstChild_;
  node->parent_ = this;
  node->nextSibling_ = former;
  firstChild_ = node;
  if (lastChild_ == nullptr) lastChild_ = node;
  return former;
}

void XMLNode::removeChild(XMLNode* node) {
  XMLNode* previous = nullptr;
  for (XMLNode* child = firstChild_; child != nullptr; previous = child, child = child->nextSibling_) {
    if (child != node) continue;
    // The unlinked node keeps its own parent and next sibling members as they were.
    if (previous == nullptr)
      firstChild_ = child->nextSibling_;
    else
      previous->nextSibling_ = child->nextSibling_;
    if (lastChild_ == child) lastChild_ = previous;
    return;
  }
}

void XMLNode::replaceChild(XMLNode* oldNode, XMLNode* newNode) {
  // A node that is no child of this one is left alone, and so is the tree.
  XMLNode* previous = nullptr;
  for (XMLNode* child = firstChild_; child != nullptr; previous = child, child = child->nextSibling_) {
    if (child != oldNode) continue;
    newNode->nextSibling_ = oldNode->nextSibling_;
    newNode->parent_ = oldNode->parent_;
    if (previous == nullptr)
      firstChild_ = newNode;
    else
      previous->nextSibling_ = newNode;
    if (lastChild_ == oldNode) lastChild_ = newNode;
    return;
  }
}

void XMLNode::insertChildrenAfter(XMLNode* child, XMLNode* chain) {
  if (chain == nullptr) return;
  XMLNode* chainEnd = chain;
  for (XMLNode* node = chain; node != nullptr; node = node->nextSibling_) {
    node->parent_ = this;
    chainEnd = node;
  }
  if (firstChild_ == nullptr) {
    firstChild_ = chain;
    lastChild_ = chainEnd;
    return;
  }
  // A child that does not belong to this node leaves the chain unlinked; we refuse
  // the splice rather than corrupt another node's list.
  bool isChild = false;
  for (XMLNode* node = firstChild_; node != nullptr && !isChild; node = node->nextSibling_) isChild = node == child;
  if (!isChild) return;
  chainEnd->nextSibling_ = child->nextSibling_;
  child->nextSibling_ = chain;
  if (lastChild_ == child) lastChild_ = chainEnd;
}

XMLElement::~XMLElement() {
  XMLAttribute* attribute = firstAttribute_;
  while (attribute != nullptr) {
    XMLAttribute* next = attribute->next;
    freeXmlString(attribute->name);
    freeXmlString(attribute->value);
    delete attribute;
    attribute = next;
  }
}

namespace {

// Up to this many attributes a walk of the list is cheaper than an index.
constexpr unsigned kIndexedAttributeCount = 16;

}  // namespace

XMLAttribute* XMLElement::findAttribute(const char* name) const {
  if (index_ != nullptr) {
    auto found = index_->find(name);
    return found == index_->end() ? nullptr : found->second;
  }
  for (XMLAttribute* attribute = firstAttribute_; attribute != nullptr; attribute = attribute->next)
    if (std::strcmp(attribute->name, name) == 0) return attribute;
  return nullptr;
}

void XMLElement::setAttribute(char* name, char* value) {
  if (XMLAttribute* existing = findAttribute(name)) {
    freeXmlString(name);
    if (existing->value != value) freeXmlString(existing->value);
    existing->value = value;
    return;
  }
  auto* attribute = new XMLAttribute{name, value, lastAttribute_, nullptr};
  linkAtEnd(attribute);
  if (index_ != nullptr) {
    index_->emplace(attribute->name, attribute);
  } else if (attributeCount_ > kIndexedAttributeCount) {
    index_ = std::make_unique<std::unordered_map<std::string_view, XMLAttribute*>>();
    for (XMLAttribute* a = firstAttribute_; a != nullptr; a = a->next) index_->emplace(a->name, a);
  }
}

XMLAttribute* XMLElement::appendArenaAttribute(XMLArena& arena, char* name, char* value) {
  auto* attribute = arena.make<XMLAttribute>(XMLAttribute{name, value, lastAttribute_, nullptr});
  linkAtEnd(attribute);
  return attribute;
}

void XMLElement::linkAtEnd(XMLAttribute* attribute) {
  if (lastAttribute_ == nullptr)
    firstAttribute_ = attribute;
  else
    lastAttribute_->next = attribute;
  lastAttribute_ = attribute;
  ++attributeCount_;
}

void XMLElement::setAttributeCopy(const char* name, const char* value) {
  setAttribute(copyXmlString(name, std::strlen(name)),
               value == nullptr ? nullptr : copyXmlString(value, std::strlen(value)));
}

void XMLElement::removeAttribute(const char* name) {
  XMLAttribute* attribute = findAttribute(name);
  if (attribute == nullptr) return;
  (attribute->previous ? attribute->previous->next : firstAttribute_) = attribute->next;
  (attribute->next ? attribute->next->previous : lastAttribute_) = attribute->previous;
  if (index_ != nullptr) index_->erase(attribute->name);
  freeXmlString(attribute->name);
  freeXmlString(attribute->value);
  delete attribute;
  --attributeCount_;
}

bool XMLElement::hasAttribute(const char* name) const { return findAttribute(name) != nullptr; }

const char* XMLElement::getAttribute(const char* name) const {
  const XMLAttribute* attribute = findAttribute(name);
  return attribute == nullptr ? nullptr : attribute->value;
}

namespace {

bool isElementWithTag(const XMLNode* node, const char* tag) {
  return node->isElement() && std::strcmp(node->getName(), tag) == 0;
}

}  // namespace

const XMLElement* findChild(const XMLNode* first, const char* tag) {
  for (const XMLNode* node = first; node != nullptr; node = node->nextSibling())
    if (isElementWithTag(node, tag)) return static_cast<const XMLElement*>(node);
  return nullptr;
}

std::vector<XMLElement*> collectElements(XMLNode* first, const char* tag, bool recursive) {
  std::vector<XMLElement*> found;
  // Depth first in document order, each node's children directly behind the node;
  // the explicit stack holds the siblings still to visit at each level.
  std::vector<XMLNode*> resume;
  XMLNode* node = first;
  while (node != nullptr || !resume.empty()) {
    if (node == nullptr) {
      node = resume.back();
      resume.pop_back();
      continue;
    }
    if (isElementWithTag(node, tag)) found.push_back(static_cast<XMLElement*>(node));
    if (recursive && node->firstChild() != nullptr) {
      if (node->nextSibling() != nullptr) resume.push_back(node->nextSibling());
      node = node->firstChild();
    } else {
      node = node->nextSibling();
    }
  }
  return found;
}

void appendElementText(const XMLElement* element, std::string& out) {
  for (XMLNode* node = element->firstChild(); node != nullptr; node = node->nextSibling())
    if (node->nodeType() == XMLNodeType::Data) out += node->getName();
}

}  // namespace regmill
