#include "xml/qt_xml_document.h"

#include <string>

#include "base/atomic_file.h"
#include "xml/xml_writer.h"

namespace regmill {

Status QXMLDocument::load(const QString& path) { return XMLDocument::load(path.toLocal8Bit().constData()); }

Status QXMLDocument::save(const QString& path, unsigned indentation, unsigned maxLineLength) {
  std::string target = path.toLocal8Bit().toStdString();
  Status written = writeFileAtomically(target, [&](std::FILE* stream) {
    // A write error stays in the stream's error flag, which the commit looks at.
    write(stream, indentation, maxLineLength).ignore();
  });
  if (!written.ok()) fail(target.c_str(), errorLine(), "couldn't write %s", path.toLatin1().constData()).ignore();
  return written;
}

QString elementText(const XMLElement* element) {
  std::string bytes;
  appendElementText(element, bytes);
  return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

}  // namespace regmill
