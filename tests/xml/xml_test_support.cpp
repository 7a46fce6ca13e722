#include "tests/xml/xml_test_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "xml/xml_string.h"

namespace regmill::test {

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

std::string writeToString(XMLDocument& document, unsigned indentation, unsigned maxLineLength) {
  char* buffer = nullptr;
  size_t size = 0;
  std::FILE* stream = open_memstream(&buffer, &size);
  if (stream == nullptr) std::abort();
  if (!document.write(stream, indentation, maxLineLength).ok()) std::abort();
  std::fclose(stream);
  std::string text(buffer, size);
  std::free(buffer);
  return text;
}

char* owned(const char* text) { return copyXmlString(text, std::strlen(text)); }

}  // namespace regmill::test
