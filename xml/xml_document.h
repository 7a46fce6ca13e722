// Documents of the XML library: a tree's root, what the prolog said, and the last
// error. XMLDocument reads and writes with byte paths and streams, QXMLDocument adds
// QString paths, XMLPP2 is the base of documents that pass the conditional
// preprocessor. A document owns its root; it is loaded once and never cleared.
#pragma once
#include <cstdint>
#include <cstdio>
#include <map>

#include <QString>

#include "xml/xml_node.h"

namespace regmill {

class XMLDocument {
 public:
  explicit XMLDocument(bool textNodes);
  virtual ~XMLDocument();
  XMLDocument(const XMLDocument&) = delete;
  XMLDocument& operator=(const XMLDocument&) = delete;

  // The factory the parser makes every element with; takes the tag over.
  virtual XMLElement* createElement(char* tag);

  bool load(const char* path);
  bool load(std::FILE* stream);
  // Parses text in memory, without byte order mark handling.
  bool parse(const char* text);
  // Prints prolog and tree; always true (output errors are not looked at).
  bool write(std::FILE* stream, unsigned indentation, unsigned maxLineLength);

  XMLNode* root() const { return root_; }
  // Takes the node over; a former root is destroyed.
  void setRoot(XMLNode* root);
  bool textNodes() const { return textNodes_; }
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
  void setError(uint32_t line, const char* format, const char* argument);
  // Reads the stream whole and parses it; `name` stands in the error text when the
  // stream can't be read.
  bool loadNamed(std::FILE* stream, const char* name);

 private:
  bool parseText(const char* text);

  unsigned indentation_ = 0;
  unsigned maxLineLength_ = 0;
  bool textNodes_;
  char* documentType_ = nullptr;
  char* version_ = nullptr;
  char* encoding_ = nullptr;
  XMLNode* root_ = nullptr;
  char errorText_[1024] = {};
  uint32_t errorLine_ = 0;
};

class QXMLDocument : public XMLDocument {
 public:
  using XMLDocument::XMLDocument;
  using XMLDocument::load;
  bool load(const QString& path);
  // Writes the file in binary mode; false with "couldn't write %s" when it cannot be opened.
  bool save(const QString& path, unsigned indentation, unsigned maxLineLength);
};

class XMLPP2 : public QXMLDocument {
 public:
  XMLPP2() : QXMLDocument(false) {}
  ~XMLPP2() override;
  virtual void reportError(const QString& message) = 0;

  // Subtrees defined by name by the preprocessor; the document owns them.
  void addDefinition(const QString& name, XMLNode* subtree);
  XMLNode* definition(const QString& name) const;

 private:
  std::map<QString, XMLNode*> definitions_;
};

}  // namespace regmill
