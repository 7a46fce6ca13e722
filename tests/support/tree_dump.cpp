#include "tests/support/tree_dump.h"

#include <cstdio>
#include <cstring>

#include "xml/xml_string.h"

namespace regmill::testing {

namespace {

std::string& appendQuoted(std::string& out, const char* text) {
  out += '"';
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p != 0; ++p) {
    char escaped[8] = {static_cast<char>(*p), 0};
    if (*p == '"' || *p == '\\') std::snprintf(escaped, sizeof escaped, "\\%c", *p);
    else if (*p == '\n' || *p == '\r') std::strcpy(escaped, *p == '\n' ? "\\n" : "\\r");
    else if (*p < 0x20 || *p > 0x7E) std::snprintf(escaped, sizeof escaped, "\\x%02X", *p);
    out += escaped;
  }
  return out += '"';
}

}  // namespace

std::string dumpTree(const XMLNode* node) {
  XMLNodeType type = node->nodeType();
  std::string out = type == XMLNodeType::Comment ? "#" : type == XMLNodeType::CDATASection ? "$" : "";
  if (type != XMLNodeType::Element) return appendQuoted(out, node->getName());
  out = std::string("(") + node->getName();
  for (const XMLAttribute* a = static_cast<const XMLElement*>(node)->attributes(); a != nullptr; a = a->next) {
    out += std::string(" @") + a->name;
    if (a->value != nullptr) appendQuoted(out += '=', a->value);
  }
  for (const XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling())
    out += ' ' + dumpTree(child);
  return out + ')';
}

std::string dumpRoot(const XMLDocument& document) {
  return document.root() == nullptr ? "null" : dumpTree(document.root());
}

char* owned(const char* text) { return copyXmlString(text, std::strlen(text)); }

std::vector<std::string> attributeValues(XMLNode* root, const char* tag,
                                         std::initializer_list<const char*> attributes) {
  std::vector<std::string> values;
  if (root == nullptr) return values;
  for (XMLElement* element : collectElements(root, tag, true)) {
    std::string joined;
    for (const char* attribute : attributes) {
      const char* text = element->getAttribute(attribute);
      joined.append(" ").append(text == nullptr ? "-" : text);
    }
    values.push_back(joined.substr(1));
  }
  return values;
}

std::vector<MemoryMapElement*> children(const MemoryMapElement* parent) {
  std::vector<MemoryMapElement*> result;
  for (XMLNode* node = parent->firstChild(); node != nullptr; node = node->nextSibling())
    if (auto* element = dynamic_cast<MemoryMapElement*>(node)) result.push_back(element);
  return result;
}

MemoryMapElement* child(const MemoryMapElement* parent, const std::string& name) {
  for (MemoryMapElement* element : children(parent))
    if (element->hasAttribute("name") && element->getAttribute("name") == name) return element;
  return nullptr;
}

std::string value(const MemoryMapElement* element, const char* name) {
  return element->hasAttribute(name) ? element->getAttribute(name) : "?";
}

std::string attributes(const MemoryMapElement* element) {
  std::string text;
  for (const XMLAttribute* attribute = element->attributes(); attribute != nullptr; attribute = attribute->next)
    text += std::string(text.empty() ? "" : " ") + attribute->name + "=" + attribute->value;
  return text;
}

std::string registerLine(const MemoryMapElement* registerElement) {
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

template <class Describe>
std::string joined(const MemoryMapElement* parent, const char* separator, Describe describe) {
  std::string text;
  for (MemoryMapElement* element : children(parent)) text += (text.empty() ? "" : separator) + describe(element);
  return text;
}

std::string names(const MemoryMapElement* parent) {
  return joined(parent, " ", [](const MemoryMapElement* e) { return value(e, "name"); });
}

std::string listing(const MemoryMapElement* group) { return joined(group, "; ", registerLine); }

CoreDocument::CoreDocument(std::initializer_list<std::pair<int, const char*>> interrupts) {
  file.setRoot(file.newElement("Processor"));
  file.setInterruptTableSize(256);
  for (const auto& [index, name] : interrupts) file.storeInterruptName(index, name);
}

}  // namespace regmill::testing
