// The library's XML tree: heap nodes over owned zero-terminated byte strings. A node
// owns its chain of children; an unlinked node belongs to whoever unlinked it.
// Attributes keep their insertion order, and a value may be null (not the same as
// empty: the writer prints both as "", but only a null value is left on the tag's line).
// The nodes of a document parsed into an arena (xml_arena.h) live in the arena's
// blocks instead: they are read, not edited, and go with the document as a whole.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace regmill {

class XMLArena;

enum class XMLNodeType : uint8_t { Element, Data, Comment, CDATASection };

class XMLNode {
 public:
  virtual ~XMLNode();
  XMLNode(const XMLNode&) = delete;
  XMLNode& operator=(const XMLNode&) = delete;

  virtual void addChild(XMLNode* node);
  virtual XMLNode* prependChild(XMLNode* node);
  virtual void removeChild(XMLNode* node);
  virtual void replaceChild(XMLNode* oldNode, XMLNode* newNode);
  virtual void insertChildrenAfter(XMLNode* child, XMLNode* chain);
  // Unlinks one child and leaves it as a node that was never linked: no parent, no
  // next sibling.
  void detachChild(XMLNode* node) {
    removeChild(node);
    node->parent_ = nullptr;
    node->nextSibling_ = nullptr;
  }
  // Unlinks all children at once and gives the first; they stay chained to one
  // another, ready for insertChildrenAfter.
  XMLNode* takeChildren() {
    lastChild_ = nullptr;
    return std::exchange(firstChild_, nullptr);
  }

  // The tag of an element, the character data of the other kinds. setName takes the
  // new text over and leaves the old one to the caller.
  const char* getName() const { return text_; }
  void setName(char* text) { text_ = text; }

  XMLNodeType nodeType() const { return type_; }
  bool isElement() const { return type_ == XMLNodeType::Element; }
  XMLNode* parent() const { return parent_; }
  XMLNode* nextSibling() const { return nextSibling_; }
  XMLNode* firstChild() const { return firstChild_; }
  uint32_t line() const { return line_; }
  void setLine(uint32_t line) { line_ = line; }

 protected:
  XMLNode(XMLNodeType type, char* text) : type_(type), text_(text) {}

 private:
  XMLNode* parent_ = nullptr;
  XMLNode* nextSibling_ = nullptr;
  XMLNode* firstChild_ = nullptr;
  // Kept in step by every operation that changes the chain, so that appending a
  // child does not walk all its siblings.
  XMLNode* lastChild_ = nullptr;
  uint32_t line_ = 0;
  XMLNodeType type_;
  char* text_;
};

// One name/value pair of an element's doubly linked attribute list.
struct XMLAttribute {
  char* name;
  char* value;  // may be null
  XMLAttribute* previous;
  XMLAttribute* next;
};

class XMLElement : public XMLNode {
 public:
  explicit XMLElement(char* tag) : XMLNode(XMLNodeType::Element, tag) {}
  ~XMLElement() override;

  // Takes both strings over. An existing pair keeps its place and gets the new value;
  // the given name and the old value are freed then.
  void setAttribute(char* name, char* value);
  void removeAttribute(const char* name);
  bool hasAttribute(const char* name) const;
  const char* getAttribute(const char* name) const;
  const XMLAttribute* attributes() const { return firstAttribute_; }
  XMLAttribute* attributes() { return firstAttribute_; }
  unsigned attributeCount() const { return attributeCount_; }

  // Copies both texts; for code that builds trees from literals.
  void setAttributeCopy(const char* name, const char* value);

  // The first pair of that name, or null.
  XMLAttribute* findAttribute(const char* name) const;
  // For the parser of an arena document: appends a pair made in `arena` with strings
  // of the arena. The caller has made sure that no pair of that name exists yet.
  XMLAttribute* appendArenaAttribute(XMLArena& arena, char* name, char* value);

 private:
  // Appends a pair whose previous link already names the last pair.
  void linkAtEnd(XMLAttribute* attribute);

  XMLAttribute* firstAttribute_ = nullptr;
  XMLAttribute* lastAttribute_ = nullptr;
  unsigned attributeCount_ = 0;
  // Names to pairs, made once an element has many attributes, so that setting each
  // of them doesn't search all the others: a tag with a million attributes would
  // otherwise take quadratic time.
  std::unique_ptr<std::unordered_map<std::string_view, XMLAttribute*>> index_;
};

class XMLData : public XMLNode {
 public:
  explicit XMLData(char* text) : XMLNode(XMLNodeType::Data, text) {}
};

class XMLComment : public XMLNode {
 public:
  explicit XMLComment(char* text) : XMLNode(XMLNodeType::Comment, text) {}
};

class XMLCDATASection : public XMLNode {
 public:
  explicit XMLCDATASection(char* text) : XMLNode(XMLNodeType::CDATASection, text) {}
};

// Helpers over a chain of siblings given by its first node; nodes that are not
// elements are passed over.
// The first element with the tag (exact, case-sensitive) from `first` on, itself included.
const XMLElement* findChild(const XMLNode* first, const char* tag);
std::vector<XMLElement*> collectElements(XMLNode* first, const char* tag, bool recursive);
// The text of all XMLData children of the element, joined in order, appended to
// `out`; nothing if there is none.
void appendElementText(const XMLElement* element, std::string& out);

}  // namespace regmill
