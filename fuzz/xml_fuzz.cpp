// Feeds arbitrary bytes to the XML parser, with text nodes on and off, prints the
// tree to memory and parses the printed text again. The same text parsed into an
// arena must print the same. Any crash, leak or undefined
// behaviour is a finding; so is a printed text that the parser can't read back
// without error, because the writer escapes everything the parser would trip on.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "xml/xml_document.h"

namespace {

std::string writeToMemory(regmill::XMLDocument& document, unsigned indentation, unsigned maxLineLength) {
  char* buffer = nullptr;
  size_t size = 0;
  std::FILE* stream = open_memstream(&buffer, &size);
  if (stream == nullptr) std::abort();
  document.write(stream, indentation, maxLineLength).ignore();
  std::fclose(stream);
  std::string text(buffer, size);
  std::free(buffer);
  return text;
}

// A tree that came from the parser prints as text that reads back without error:
// its tags and attribute names hold name characters only, and values and texts are
// escaped. Two things are printed raw and may break that: an element with an empty
// tag and no children prints as "</>", an end tag, and a version or encoding that
// was quoted with apostrophes may hold a double quote.
bool printsReadably(const regmill::XMLDocument& document) {
  if (document.root() == nullptr) return false;
  for (const char* raw : {document.version(), document.encoding()})
    if (raw != nullptr && std::strchr(raw, '"') != nullptr) return false;
  return regmill::collectElements(document.root(), "", true).empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The parser reads zero-terminated text; bytes behind a zero are not seen.
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (bool textNodes : {true, false}) {
    regmill::XMLDocument document(textNodes);
    const regmill::Status parsed = document.parse(text.c_str());
    const unsigned indentation = textNodes ? 2 : 0;
    const unsigned maxLineLength = size % 2 == 0 ? 0 : 40;
    const std::string printed = writeToMemory(document, indentation, maxLineLength);

    regmill::XMLDocument inArena(textNodes, regmill::XMLStorage::Arena);
    const regmill::Status parsedInArena = inArena.parse(text.c_str());
    if (bool(parsed) != bool(parsedInArena) || writeToMemory(inArena, indentation, maxLineLength) != printed) {
      std::fprintf(stderr, "the arena parse differs from the heap parse\n");
      std::abort();
    }

    regmill::XMLDocument again(textNodes);
    bool readBack = bool(again.parse(printed.c_str()));
    if (printsReadably(document) && !readBack) {
      std::fprintf(stderr, "printed text doesn't parse: %s at line %u\n", again.errorText(), again.errorLine());
      std::abort();
    }
    writeToMemory(again, indentation, maxLineLength);
    if (document.root() != nullptr) {
      auto* root = static_cast<regmill::XMLElement*>(document.root());
      std::string joined;
      if (root->isElement()) regmill::appendElementText(root, joined);
    }
  }
  return 0;
}
