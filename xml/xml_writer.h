// Prints a document as text: prolog, document type, then the tree with the
// document's indentation and maximum line length. Bytes outside 0x20-0x7E and the
// four markup characters come out as references, so the parser reads back the
// same bytes.
#pragma once
#include <cstdio>
#include <string>

namespace regmill {

class XMLDocument;

void writeXML(const XMLDocument& document, std::FILE* stream);

// Appends `text` escaped for an attribute value or character data.
void appendEscaped(std::string& out, const char* text);

}  // namespace regmill
