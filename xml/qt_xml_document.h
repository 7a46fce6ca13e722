// The Qt side of the XML library: documents that take QString paths. The
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

}  // namespace regmill
