// The Qt side of the XML library: documents that take QString paths, the base of
// documents that report through a QString, and an element's text as a QString. The
// tree and the plain documents don't need Qt; only code at the QString edges
// includes this header.
#pragma once
#include <QString>

#include "xml/xml_document.h"

namespace regmill {

class QXMLDocument : public XMLDocument {
 public:
  using XMLDocument::XMLDocument;
  using XMLDocument::load;
  Status load(const QString& path);
  // Writes the file through a temporary file beside it, so that a failed write
  // leaves an existing file as it was; the error text is then "couldn't write %s".
  Status save(const QString& path, unsigned indentation, unsigned maxLineLength);
};

// The base of documents that pass the conditional preprocessor; each says what
// becomes of the preprocessor's messages. A new one has text nodes off.
class XMLPP2 : public QXMLDocument {
 public:
  XMLPP2() : QXMLDocument(false) {}
  virtual void reportError(const QString& message) = 0;
};

// The text of all XMLData children of the element, joined in order; the QString
// holds the bytes one to one (Latin-1), so that it converts back to the same bytes.
QString elementText(const XMLElement* element);

}  // namespace regmill
