// The Qt side of the XML library: documents that take QString paths, the base of
// documents that report through a QString, and an element's text as a QString. The
// tree and the plain documents don't need Qt; only code at the QString edges
// includes this header.
#pragma once
#include <QString>
#include <map>
#include <memory>

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
// becomes of the preprocessor's messages. Text nodes are off unless asked for. The
// document keeps the fragments that the preprocessor stores by name, for as long
// as it lives.
class XMLPP2 : public QXMLDocument {
 public:
  explicit XMLPP2(bool textNodes = false) : QXMLDocument(textNodes) {}
  virtual void reportError(const QString& message) = 0;

  // Takes the element over; a fragment stored before under that name is freed.
  void storeFragment(const QString& name, XMLElement* element) { fragments_[name].reset(element); }
  // Null when none has that name.
  const XMLElement* fragment(const QString& name) const {
    auto found = fragments_.find(name);
    return found == fragments_.end() ? nullptr : found->second.get();
  }

 private:
  std::map<QString, std::unique_ptr<XMLElement>> fragments_;
};

// The text of all XMLData children of the element, joined in order; the QString
// holds the bytes one to one (Latin-1), so that it converts back to the same bytes.
QString elementText(const XMLElement* element);

}  // namespace regmill
