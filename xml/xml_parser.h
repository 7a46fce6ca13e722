// The library's one XML parser: single pass, non-validating and lenient. It builds
// the tree through the document's createElement, so that each document class gets
// its own element class; a document with an arena gets every node and string from
// it. Only a bad attribute name and a mismatched end tag are errors.
#pragma once
#include <cstdint>

#include "xml/xml_node.h"

namespace regmill {

class XMLDocument;

enum class XMLParseStatus : uint32_t { Ok = 0, BadAttributeName = 1, EndTagMismatch = 2 };

struct XMLParseResult {
  XMLNode* root;  // the last top-level element that was closed, owned by the caller
  XMLParseStatus status;
  uint32_t line;  // line feeds stepped onto before the parse stopped, from 0
};

// Parses zero-terminated text. Version, encoding and document type go to the document.
XMLParseResult parseXML(XMLDocument& document, const char* text);

}  // namespace regmill
