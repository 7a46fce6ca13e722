// Documents of the XML library: a tree's root, what the prolog said, and the last
// error. XMLDocument reads and writes with byte paths and streams; the Qt adapters
// are in qt_xml_document.h. A document owns its root; it is loaded once and never
// cleared. Loading, parsing and writing report a failure as a Status naming the
// file, the line (from 1) and the reason; errorText and errorLine keep the last one
// as the library's callers know it (the line counted from 0).
#pragma once
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>

#include "base/status.h"
#include "xml/xml_arena.h"
#include "xml/xml_node.h"

namespace regmill {

// How a document keeps its nodes: each on the heap, owned by its parent, for a tree
// that is built or edited; or all in one arena, for a tree that is parsed, read and
// thrown away. An arena tree is not edited: its strings are no heap strings, so no
// node may be unlinked and deleted, and setAttribute and setName don't apply.
enum class XMLStorage : uint8_t { Heap, Arena };

class XMLDocument {
 public:
  // An arena document makes its elements itself: a subclass that overrides
  // createElement keeps heap storage.
  explicit XMLDocument(bool textNodes, XMLStorage storage = XMLStorage::Heap);
  virtual ~XMLDocument();
  XMLDocument(const XMLDocument&) = delete;
  XMLDocument& operator=(const XMLDocument&) = delete;

  // The factory the parser makes every element with; takes the tag over (in an
  // arena document, the tag is arena memory and so is the element).
  virtual XMLElement* createElement(char* tag);

  // Reads the whole file, within the input size bound, skips a UTF-8 byte order
  // mark and parses the rest.
  Status load(const char* path);
  // The same from the stream's start; the stream stays open.
  Status load(std::FILE* stream);
  // Parses text in memory, without byte order mark handling.
  Status parse(const char* text);
  // Prints prolog and tree; fails when the stream reports a write error.
  Status write(std::FILE* stream, unsigned indentation, unsigned maxLineLength);

  XMLNode* root() const { return root_; }
  // Takes the node over; a former root is destroyed (in a heap document).
  void setRoot(XMLNode* root);
  // Hands the root over to the caller and leaves the document without one.
  XMLNode* releaseRoot() { return std::exchange(root_, nullptr); }
  bool textNodes() const { return textNodes_; }
  // Null for a heap document.
  XMLArena* arena() const { return arena_.get(); }
  const char* documentType() const { return documentType_; }
  const char* version() const { return version_; }
  const char* encoding() const { return encoding_; }
  void setDocumentType(char* text);
  void setVersion(char* text);
  void setEncoding(char* text);
  unsigned indentation() const { return indentation_; }
  unsigned maxLineLength() const { return maxLineLength_; }

  const char* errorText() const { return errorText_; }
  uint32_t errorLine() const { return errorLine_; }

 protected:
  // Stores the error text and line and gives the failure as a Status; `line` counts
  // from 0 here, as errorLine does.
  Status fail(const char* file, uint32_t line, const char* format, const char* argument);
  // Parses a file's contents; `name` goes into a failure.
  Status parseContents(const std::string& contents, const char* name);

 private:
  Status parseText(const char* text, const char* name);

  unsigned indentation_ = 0;
  unsigned maxLineLength_ = 0;
  bool textNodes_;
  std::unique_ptr<XMLArena> arena_;
  char* documentType_ = nullptr;
  char* version_ = nullptr;
  char* encoding_ = nullptr;
  XMLNode* root_ = nullptr;
  char errorText_[1024] = {};
  uint32_t errorLine_ = 0;
};

}  // namespace regmill
