#include "tests/xml/xml_test_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "xml/xml_string.h"

namespace regmill::test {

namespace {

void appendQuoted(std::string& out, const char* text) {
  out += '"';
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p != 0; ++p) {
    char escaped[8];
    if (*p == '"' || *p == '\\') std::snprintf(escaped, sizeof escaped, "\\%c", *p);
    else if (*p == '\n') std::strcpy(escaped, "\\n");
    else if (*p == '\r') std::strcpy(escaped, "\\r");
    else if (*p == '\t') std::strcpy(escaped, "\\t");
    else if (*p < 0x20 || *p > 0x7E) std::snprintf(escaped, sizeof escaped, "\\x%02X", *p);
    else std::snprintf(escaped, sizeof escaped, "%c", *p);
    out += escaped;
  }
  out += '"';
}

}  // namespace

std::string dumpTree(const XMLNode* node) {
  std::string out;
  switch (node->nodeType()) {
    case XMLNodeType::Data: appendQuoted(out, node->getName()); return out;
    case XMLNodeType::Comment: out += '#'; appendQuoted(out, node->getName()); return out;
    case XMLNodeType::CDATASection: out += '$'; appendQuoted(out, node->getName()); return out;
    case XMLNodeType::Element: break;
  }
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
  document.write(stream, indentation, maxLineLength);
  std::fclose(stream);
  std::string text(buffer, size);
  std::free(buffer);
  return text;
}

char* owned(const char* text) { return copyXmlString(text, std::strlen(text)); }

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "regmill-xml-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) std::abort();
  path_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::write(const std::string& name, const std::string& contents) const {
  std::ofstream(file(name), std::ios::binary) << contents;
  return file(name);
}

std::string TempFolder::read(const std::string& name) const {
  std::ostringstream contents;
  contents << std::ifstream(file(name), std::ios::binary).rdbuf();
  return contents.str();
}

}  // namespace regmill::test
