// The conditional preprocessor in its DOM form, for text-and-markup pages and tool
// lists held as Qt DOM documents. It shares the vocabulary of the node form, but its
// macro map is one for the whole walk (a define holds for the rest of the document),
// and it adds define_macro, expand_definition, expand_attributes and the inclusion
// of plain text. Messages go to the diagnostic channel as warnings and errors.
#pragma once
#include <QDomDocument>
#include <QString>
#include <memory>

#include "project/macro_map.h"

namespace regmill {

class XmlPP {
 public:
  // The macros start as a copy of the built-in map.
  XmlPP();
  virtual ~XmlPP();

  // The workbench's own macros: ide, platform, build and the like; made once.
  static const MacroMap& builtInMacros();

  QDomDocument& document() { return document_; }
  MacroMap& macros() { return macros_; }

  // Reads the file into the document and walks it. A macro string that is not empty
  // is merged over a copy of the map for this walk. False when the file cannot be
  // read or parsed; the reason is on the error channel.
  bool load(const QString& file, const QString& macroString = QString());
  // An object for a page, with the macro `output` set to "print" (mode 1) or "html"
  // (mode 2), loaded from the file.
  static std::unique_ptr<XmlPP> forPage(const QString& file, int mode);

  void processConditionals(QDomNode first, const QString& fileName, MacroMap& macros, bool expandAttributes);

 private:
  class Walker;
  QDomDocument document_;
  MacroMap macros_;
};

// Reads XML into a DOM document as the preprocessor needs it: namespace processing
// off, prefixes kept in the names, and character data that is only white space
// kept as text nodes. False with the reader's message, line and column on failure.
bool readDomDocument(const QByteArray& text, QDomDocument& document, QString& error, int& line, int& column);

}  // namespace regmill
